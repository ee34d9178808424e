// Umbrella header: everything public of KxXmlLib16 and KxXmlLib16Data.
#ifndef KX_KXXMLLIB16_H
#define KX_KXXMLLIB16_H

#include "KxConfig.h"
#include "KxTypes.h"

#include "CBase64.h"
#include "CBigInteger.h"
#include "CBinaryData.h"
#include "CBinaryStream.h"
#include "CConversions.h"
#include "CDateTime.h"
#include "CDateTimeSpan.h"
#include "CDecimal.h"
#include "CEncoder.h"
#include "CFileBinaryStream.h"
#include "CFileTextStream.h"
#include "CInstanceMonitor.h"
#include "CKXCriticalSection.h"
#include "CKxException.h"
#include "CPrimitiveRestrictions.h"
#include "CSmartPtr.h"
#include "CStringBuffer.h"
#include "CTextStream.h"
#include "CWhitespaceUtils.h"
#include "CXmlCollectionBase.h"
#include "CXmlObjectBase.h"
#include "CXmlObjectHelper.h"
#include "ConvertUTF.h"
#include "FormatString.h"
#include "KxRegEx.h"
#include "KxVariant.h"

#endif
