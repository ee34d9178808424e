// Root base of the library's classes; records the class name for instance tracking.
#ifndef KX_CINSTANCEMONITOR_H
#define KX_CINSTANCEMONITOR_H

#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CInstanceMonitor {
public:
    // `className` is a string literal naming the derived class; nothing is kept.
    explicit CInstanceMonitor(const char* className);
    CInstanceMonitor(const CInstanceMonitor&) = default;
    CInstanceMonitor& operator=(const CInstanceMonitor&) = default;
    ~CInstanceMonitor() = default;
};

}  // namespace KxXmlLib16

#endif
