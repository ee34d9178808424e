#include "CXmlCollectionBase.h"

namespace KxXmlLib16 {

CXmlCollectionBase::CXmlCollectionBase() = default;
CXmlCollectionBase::CXmlCollectionBase(const CXmlCollectionBase& other) = default;
CXmlCollectionBase::~CXmlCollectionBase() = default;

}  // namespace KxXmlLib16
