// Every read and write of the order document in one run, each set against the expat floor:
//   kx_bench_overview            (scripts/bench.sh builds and runs it)
// The document comes from the shared generator at benchmark time: KX_BENCH_MB megabytes (10 by
// default; run it with 1, 10 and 100 to see whether the cost grows linearly). The runs:
//   Floor/ExpatTrivial        expat with namespace processing and counting handlers (the floor)
//   Floor/ExpatNoHandlers     expat with namespace processing and no handlers
//   Floor/ZlibLevel1          deflate level 1 with a gzip header of the XML text alone
//   Read/Tree                 CXmlDocument::LoadXmlStream, the tree built and freed
//   Read/Xml, Read/Json, Read/FastInfoset   FromXmlStream / FromJsonStream into the bindings
//   Write/Xml (a string), Write/XmlStream (bytes), Write/XmlGzip, Write/XmlZlib,
//   Write/Json, Write/FastInfoset,
//   Write/FastInfosetGzip     the bound objects written to memory
//   Pugixml/Parse, Pugixml/Save   pugixml's DOM (only when libpugixml-dev is installed)
//   Gsoap/Read, Gsoap/Write, Xsd/Read, Xsd/Write   gSOAP and CodeSynthesis XSD bindings of the
//                             same schema, from memory to memory (with KX_BENCH_PEERS)
// After the runs a table gives each run's rate in MB of the document per second, its time as a
// ratio to the floor, and the peak memory it adds: the run is done once more in a forked child,
// whose peak resident size is reset once the free heap is trimmed and read after the run (the
// input pages the run touches count).
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zlib.h>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#ifdef KX_HAVE_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef KX_HAVE_PEERS
#include "Peers.h"
#endif

#include "BenchSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"

using namespace KxXmlLib16;
using KxOrders::COrders;

namespace {

// The document and everything derived from it before timing starts.
struct Inputs {
    int sizeMb = 10;
    std::string xml;
    std::string failure;
    CSerializationContext jsonContext;  // standard escaping: the document has quotation marks
    CSerializationContext context;
    COrders orders;
    CBinaryData json;
    CBinaryData fastInfoset;
};

Inputs& Data() {
    static Inputs* inputs = [] {
        Inputs* in = new Inputs();
        if (const char* mb = std::getenv("KX_BENCH_MB")) in->sizeMb = std::atoi(mb);
        in->xml = KxBench::GenerateOrdersDocument(in->sizeMb, in->failure);
        if (in->xml.empty()) return in;
        try {
            in->jsonContext.GetJsonContext()->SetStandardEscaping(true);
            in->orders.FromXml(in->xml.c_str());
            in->json = in->orders.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, in->jsonContext);
            in->fastInfoset = in->orders.ToFastInfosetStream(FInfoDecl_None, in->context);
        } catch (const CKxException& e) {
            in->failure = e.GetFullMessage();
            in->xml.clear();
        }
        return in;
    }();
    return *inputs;
}

const unsigned char* Bytes(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

// Parses with expat, namespace processing on; `handlers` sets the counting handlers.
size_t Expat(bool handlers) {
    const std::string& xml = Data().xml;
    KxBench::ExpatCounts counts;
    if (!KxBench::ParseWithExpat(xml, handlers, counts)) {
        throw CKxException("expat rejected the document");
    }
    benchmark::DoNotOptimize(counts);
    return xml.size();
}

size_t ZlibLevel1() {
    const std::string& xml = Data().xml;
    z_stream stream{};
    deflateInit2(&stream, 1, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, static_cast<uLong>(xml.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(xml.data()));
    stream.avail_in = static_cast<uInt>(xml.size());
    stream.next_out = reinterpret_cast<Bytef*>(&out[0]);
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    deflateEnd(&stream);
    benchmark::DoNotOptimize(out.data());
    return xml.size();
}

size_t Read(const unsigned char* data, unsigned long length, bool json) {
    COrders orders;
    if (json) {
        orders.FromJsonStream(data, length, Data().jsonContext);
    } else {
        orders.FromXmlStream(data, length, Data().context);
    }
    benchmark::DoNotOptimize(orders.m_orders->GetCount());
    return length;
}

size_t Bytes(const CBinaryData& data) {
    benchmark::DoNotOptimize(data.GetData());
    return data.GetLength();
}

// One measured operation: returns the bytes it read or wrote.
struct Operation {
    const char* name;
    std::function<size_t()> run;
};

std::vector<Operation> Operations() {
    Inputs& in = Data();
    std::vector<Operation> operations = {
        {"Floor/ExpatTrivial", [] { return Expat(true); }},
        {"Floor/ExpatNoHandlers", [] { return Expat(false); }},
        {"Floor/ZlibLevel1", ZlibLevel1},
        {"Read/Tree",
         [&in] {
             CXmlDocument document;
             document.LoadXmlStream(Bytes(in.xml), static_cast<unsigned long>(in.xml.size()));
             return in.xml.size();
         }},
        {"Read/Xml",
         [&in] { return Read(Bytes(in.xml), static_cast<unsigned long>(in.xml.size()), false); }},
        {"Read/Json", [&in] { return Read(in.json.GetData(), in.json.GetLength(), true); }},
        {"Read/FastInfoset",
         [&in] { return Read(in.fastInfoset.GetData(), in.fastInfoset.GetLength(), false); }},
        {"Write/Xml",
         [&in] {
             const std::string text = in.orders.ToXml(true, true, EOLType_LF, in.context);
             benchmark::DoNotOptimize(text.data());
             return text.size();
         }},
        {"Write/XmlStream",
         [&in] {
             return Bytes(in.orders.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                                in.context));
         }},
        {"Write/XmlGzip",
         [&in] {
             return Bytes(in.orders.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                                in.context, CompressionType_GZip));
         }},
        {"Write/XmlZlib",
         [&in] {
             return Bytes(in.orders.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                                in.context, CompressionType_ZLib));
         }},
        {"Write/Json",
         [&in] {
             return Bytes(in.orders.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF,
                                                 in.jsonContext));
         }},
        {"Write/FastInfoset",
         [&in] { return Bytes(in.orders.ToFastInfosetStream(FInfoDecl_None, in.context)); }},
        {"Write/FastInfosetGzip",
         [&in] {
             return Bytes(in.orders.ToFastInfosetStream(FInfoDecl_None, in.context,
                                                        CompressionType_GZip));
         }},
    };
#ifdef KX_HAVE_PUGIXML
    operations.push_back({"Pugixml/Parse", [&in] {
                              pugi::xml_document document;
                              document.load_buffer(in.xml.data(), in.xml.size());
                              return in.xml.size();
                          }});
    operations.push_back({"Pugixml/Save", [&in] {
                              static pugi::xml_document document;
                              if (!document.first_child()) {
                                  document.load_buffer(in.xml.data(), in.xml.size());
                              }
                              std::ostringstream out;
                              document.save(out);
                              return out.str().size();
                          }});
#endif
#ifdef KX_HAVE_PEERS
    operations.push_back({"Gsoap/Read", [&in] { return KxPeers::GsoapRead(in.xml); }});
    operations.push_back({"Gsoap/Write", [&in] { return KxPeers::GsoapWrite(in.xml); }});
    operations.push_back({"Xsd/Read", [&in] { return KxPeers::XsdRead(in.xml); }});
    operations.push_back({"Xsd/Write", [&in] { return KxPeers::XsdWrite(in.xml); }});
#endif
    return operations;
}

// Resident size now, in bytes.
long CurrentRss() {
    long pages = 0;
    long resident = 0;
    if (std::FILE* statm = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2) resident = 0;
        std::fclose(statm);
    }
    return resident * sysconf(_SC_PAGESIZE);
}

// Peak resident size since the process started or its peak was reset, in bytes.
long PeakRss() {
    long kb = -1;
    if (std::FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, status) != nullptr) {
            if (std::sscanf(line, "VmHWM: %ld kB", &kb) == 1) break;
        }
        std::fclose(status);
    }
    return kb * 1024L;
}

// Peak resident bytes an operation adds, from one run in a forked child (which reports its peak
// over its resident size at the start through a pipe); -1 on failure.
long PeakAddedBytes(const Operation& operation) {
    int fds[2];
    if (pipe(fds) != 0) return -1;
    const pid_t child = fork();
    if (child == 0) {
        close(fds[0]);
        // Free heap pages left resident by earlier runs would hide the operation's growth;
        // then the peak is reset to the resident size of now.
        malloc_trim(0);
        if (std::FILE* clear = std::fopen("/proc/self/clear_refs", "w")) {
            std::fputs("5", clear);
            std::fclose(clear);
        }
        const long start = CurrentRss();
        long added = -1;
        try {
            operation.run();
            added = PeakRss() - start;
        } catch (...) {
        }
        const ssize_t written = write(fds[1], &added, sizeof added);
        _exit(written == sizeof added ? 0 : 1);
    }
    close(fds[1]);
    long added = -1;
    if (child < 0 || read(fds[0], &added, sizeof added) != sizeof added) added = -1;
    close(fds[0]);
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    return added;
}

// The console output, then the table of every run against the floor.
class TableReporter : public KxBench::TimeKeepingReporter {
public:
    explicit TableReporter(std::vector<Operation> operations)
        : m_operations(std::move(operations)) {}

    void Finalize() override {
        ConsoleReporter::Finalize();
        const double floor = Time("Floor/ExpatTrivial");
        const double documentMb = static_cast<double>(Data().xml.size()) / 1e6;
        std::ostream& out = GetOutputStream();
        out << "\nDocument " << std::fixed << std::setprecision(1) << documentMb
            << " MB; ratio = CPU time / Floor/ExpatTrivial; added peak memory in MB and per MB "
               "of document\n";
        out << std::left << std::setw(24) << "run" << std::right << std::setw(10) << "MB/s"
            << std::setw(10) << "ms" << std::setw(8) << "ratio" << std::setw(12) << "peak MB"
            << std::setw(10) << "x doc" << "\n";
        for (const Operation& operation : m_operations) {
            const double time = Time(operation.name);
            if (time <= 0) continue;
            const long added = PeakAddedBytes(operation);
            out << std::left << std::setw(24) << operation.name << std::right << std::fixed
                << std::setprecision(1) << std::setw(10) << documentMb / (time / 1e3)
                << std::setw(10) << time << std::setprecision(2) << std::setw(8)
                << (floor > 0 ? time / floor : 0) << std::setprecision(1) << std::setw(12)
                << (added < 0 ? -1.0 : static_cast<double>(added) / 1e6) << std::setprecision(2)
                << std::setw(10) << (added < 0 ? -1.0 : static_cast<double>(added) / 1e6 / documentMb)
                << "\n";
        }
    }

private:
    std::vector<Operation> m_operations;
};

}  // namespace

int main(int argc, char** argv) {
    // Strings are held in the local code page, as applications run it.
    std::setlocale(LC_ALL, "C.UTF-8");
    benchmark::Initialize(&argc, argv);
    std::vector<Operation> operations = Operations();
    for (const Operation& operation : operations) {
        benchmark::RegisterBenchmark(operation.name, [operation](benchmark::State& state) {
            if (Data().xml.empty()) {
                state.SkipWithError(Data().failure.c_str());
                return;
            }
            // Every rate is of the document, whatever the size of what the run produces.
            const size_t bytes = Data().xml.size();
            try {
                for (auto _ : state) benchmark::DoNotOptimize(operation.run());
            } catch (const CKxException& e) {
                state.SkipWithError(e.GetFullMessage().c_str());
                return;
            } catch (const std::exception& e) {
                state.SkipWithError(e.what());
                return;
            }
            state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) *
                                    static_cast<int64_t>(bytes));
        })->Unit(benchmark::kMillisecond);
    }
    TableReporter reporter(operations);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
