// gSOAP bindings of the order schema (generated at build time by wsdl2h and soapcpp2).
#include <memory>
#include <sstream>
#include <stdexcept>

#include "Peers.h"
#include "ns1.nsmap"
#include "ordersH.h"

namespace KxPeers {

namespace {

struct SoapDeleter {
    void operator()(struct soap* soap) const {
        soap_destroy(soap);
        soap_end(soap);
        soap_free(soap);
    }
};
using Soap = std::unique_ptr<struct soap, SoapDeleter>;

// Reads the document into `orders`, owned by `soap`.
void Read(const std::string& xml, struct soap* soap, ns1__OrdersType& orders) {
    std::istringstream in(xml);
    soap->is = &in;
    if (soap_read_ns1__OrdersType(soap, &orders) != SOAP_OK) {
        throw std::runtime_error("gSOAP rejected the document");
    }
    soap->is = nullptr;
}

}  // namespace

size_t GsoapRead(const std::string& xml) {
    Soap soap(soap_new1(SOAP_XML_STRICT));
    ns1__OrdersType orders;
    Read(xml, soap.get(), orders);
    return xml.size();
}

size_t GsoapWrite(const std::string& xml) {
    static Soap soap(soap_new1(SOAP_XML_STRICT | SOAP_XML_INDENT));
    static ns1__OrdersType orders;
    static bool read = false;
    if (!read) {
        Read(xml, soap.get(), orders);
        read = true;
    }
    std::ostringstream out;
    soap->os = &out;
    if (soap_write_ns1__OrdersType(soap.get(), &orders) != SOAP_OK) {
        throw std::runtime_error("gSOAP failed to write the document");
    }
    soap->os = nullptr;
    return out.str().size();
}

}  // namespace KxPeers
