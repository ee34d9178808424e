// The peer data binders measured beside the library (built with KX_BENCH_PEERS from bindings
// generated at build time): each reads the order document from memory into its own objects, or
// writes the objects it read once back to memory. Each returns the bytes read or written and
// throws std::runtime_error when the peer rejects the document.
#ifndef KX_BENCH_PEERS_H
#define KX_BENCH_PEERS_H

#include <cstddef>
#include <string>

namespace KxPeers {

size_t GsoapRead(const std::string& xml);
size_t GsoapWrite(const std::string& xml);
size_t XsdRead(const std::string& xml);
size_t XsdWrite(const std::string& xml);

}  // namespace KxPeers

#endif
