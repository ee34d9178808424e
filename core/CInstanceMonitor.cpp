#include "CInstanceMonitor.h"

namespace KxXmlLib16 {

CInstanceMonitor::CInstanceMonitor(const char* /*className*/) {}

}  // namespace KxXmlLib16
