// CodeSynthesis XSD C++/Tree bindings of the order schema on Xerces-C (generated at build time
// by xsdcxx).
#include <xercesc/util/PlatformUtils.hpp>

#include <memory>
#include <sstream>
#include <stdexcept>

#include "Peers.h"
#include "order.hxx"

namespace KxPeers {

namespace {

// Xerces-C is initialised once for the process.
void Initialise() {
    static const bool done = [] {
        xercesc::XMLPlatformUtils::Initialize();
        return true;
    }();
    (void)done;
}

const xml_schema::flags kFlags =
    xml_schema::flags::dont_validate | xml_schema::flags::dont_initialize;

std::unique_ptr<orders::OrdersType> Read(const std::string& xml) {
    Initialise();
    std::istringstream in(xml);
    return orders::Orders(in, kFlags);
}

}  // namespace

size_t XsdRead(const std::string& xml) {
    if (!Read(xml)) throw std::runtime_error("XSD rejected the document");
    return xml.size();
}

size_t XsdWrite(const std::string& xml) {
    static const std::unique_ptr<orders::OrdersType> read = Read(xml);
    xml_schema::namespace_infomap map;
    map[""].name = "urn:bench:orders";
    std::ostringstream out;
    orders::Orders(out, *read, map, "UTF-8", kFlags);
    return out.str().size();
}

}  // namespace KxPeers
