// IErrorPathProvider: where in a JSON text the reader currently is, for error messages.
#ifndef KX_IERRORPATHPROVIDER_H
#define KX_IERRORPATHPROVIDER_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT IErrorPathProvider {
public:
    virtual ~IErrorPathProvider() {}

    // A path that locates the item being read, starting with "$".
    virtual std::string GetPath() = 0;
};

}  // namespace KxXmlLib16

#endif
