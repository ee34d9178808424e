// File output that cannot be completed (a full device, a path that cannot be created, a file
// size limit hit midway, an object that fails while it is written), and reads that fail
// (malformed bytes, the wrong root, invalid content midway) on objects of the sample order
// bindings: what the caller is told, what is left on disk, and whether the object can be used
// again.
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <typeinfo>

#include "ExampleEquality.h"
#include "KxTestSupport.h"
#include "KxXmlLib16.h"
#include "OrderBindings.h"

using namespace KxXmlLib16;
using namespace KxOrders;

namespace {

const char kOrdersOpen[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<Orders xmlns=\"urn:bench:orders\" count=\"2\">\n";

// Hex digits that differ from order to order, so that compressed documents stay large.
std::string Noise(int seq) {
    unsigned value = 2654435761u * static_cast<unsigned>(seq + 1);
    std::string text;
    for (int i = 0; i < 32; ++i) {
        value = value * 1103515245u + 12345u;
        text += "0123456789abcdef"[(value >> 16) & 15];
    }
    return text;
}

// One order; `seq` tells the orders of a document apart.
std::string OrderXml(int seq, const char* status = "confirmed", const char* total = "33.00") {
    const std::string n = std::to_string(seq);
    return "<Order id=\"A-" + n + "\" seq=\"" + n + "\" status=\"" + status + "\">"
           "<OrderDate>2024-03-01T10:15:30Z</OrderDate>"
           "<Customer id=\"C-" + n + "\" vip=\"true\"><Name>Anna Müller</Name>"
           "<Email>anna@example.com</Email><BillingAddress><Street>Hauptstraße 5</Street>"
           "<City>Köln</City><PostalCode>50667</PostalCode><Country>DE</Country>"
           "</BillingAddress></Customer>"
           "<Line no=\"1\"><Sku>SKU-" + n + "</Sku><Description>Tea &amp; biscuits " + Noise(seq) + "</Description>"
           "<Quantity>2</Quantity><UnitPrice>12.50</UnitPrice><Weight>0.75</Weight>"
           "<Taxable>true</Taxable></Line>"
           "<Invoice terms=\"30\"><Reference>INV-" + n + "</Reference>"
           "<DueDate>2024-04-01</DueDate></Invoice>"
           "<Tag>gift</Tag><Total>" + total + "</Total></Order>\n";
}

// Orders numbered first .. first + count - 1.
std::string OrdersXml(int first, int count) {
    std::string xml = kOrdersOpen;
    for (int seq = first; seq < first + count; ++seq) xml += OrderXml(seq);
    return xml + "</Orders>\n";
}

CSmartPtr<COrders> ReadOrders(const std::string& xml) {
    CSmartPtr<COrders> orders(new COrders());
    orders->FromXml(xml.c_str());
    return orders;
}

std::string Bytes(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

std::string TmpPath(const std::string& name) {
    return std::string(KX_TEST_TMP_DIR) + "/" + name;
}

bool PathExists(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0;
}

bool IsDirectory(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::string ReadFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// The first cause of a failure: an I/O error met while streamed text is flushed midway reaches
// the caller wrapped in the chain of elements that were being written.
const CKxException& Innermost(const CKxException& e) {
    const CKxException* cause = &e;
    while (cause->GetInnerException() != nullptr) cause = cause->GetInnerException();
    return *cause;
}

// "" when the first cause of what `fn` throws is exactly a CKxException with `message`,
// otherwise what happened instead.
std::string Mismatch(const std::function<void()>& fn, const std::string& message) {
    try {
        fn();
    } catch (const CKxException& e) {
        const CKxException& cause = Innermost(e);
        if (typeid(cause) != typeid(CKxException)) return "subclass: " + cause.GetMessage();
        return cause.GetMessage() == message ? "" : "message: " + cause.GetMessage();
    } catch (...) {
        return "not a library exception";
    }
    return "nothing thrown";
}

// Runs `fn` in a child process whose files may not grow beyond `limit` bytes (writes past it
// fail with EFBIG instead of raising SIGXFSZ) and returns Mismatch's verdict, so that a full
// disk can be met by a root user on any file system.
std::string MismatchUnderFileSizeLimit(rlim_t limit, const std::function<void()>& fn,
                                       const std::string& message) {
    int channel[2];
    if (pipe(channel) != 0) return "pipe failed";
    const pid_t child = fork();
    if (child < 0) return "fork failed";
    if (child == 0) {
        close(channel[0]);
        const struct rlimit fileSize = {limit, limit};
        signal(SIGXFSZ, SIG_IGN);
        const std::string verdict = setrlimit(RLIMIT_FSIZE, &fileSize) == 0
                                        ? Mismatch(fn, message)
                                        : "setrlimit failed";
        const ssize_t sent = write(channel[1], verdict.data(), verdict.size());
        _exit(sent == static_cast<ssize_t>(verdict.size()) ? 0 : 1);
    }
    close(channel[1]);
    std::string verdict;
    char chunk[256];
    ssize_t got;
    while ((got = read(channel[0], chunk, sizeof chunk)) > 0) verdict.append(chunk, got);
    close(channel[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) return "child did not finish";
    return verdict;
}

// Sets the process-wide streaming switch for one scope.
struct StreamingScope {
    explicit StreamingScope(bool on) { AsyncToXmlFile(on); }
    ~StreamingScope() { AsyncToXmlFile(false); }
};

// The file-writing entry points, each with the bytes it would write (for checks of what a
// streamed write leaves behind) and whether AsyncToXmlFile(true) makes it stream.
struct FileWriter {
    const char* name;
    bool streams;
    std::function<void(const COrders&, const char*)> write;
    std::function<std::string(const COrders&)> bytes;
};

const FileWriter kWriters[] = {
    {"XML", true, [](const COrders& o, const char* path) { o.ToXmlFile(path); },
     [](const COrders& o) { return Bytes(o.ToXmlStream()); }},
    {"XML UTF-16", true,
     [](const COrders& o, const char* path) {
         o.ToXmlFile(path, true, true, XmlEncoding_UTF16);
     },
     [](const COrders& o) {
         return "\xFF\xFE" + Bytes(o.ToXmlStream(true, true, XmlEncoding_UTF16));
     }},
    {"XML gzip", false,
     [](const COrders& o, const char* path) {
         o.ToXmlFile(path, true, true, XmlEncoding_UTF8, EOLType_LF,
                     CSerializationContext::m_defaultContext, CompressionType_GZip);
     },
     [](const COrders& o) {
         return Bytes(o.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF,
                                    CSerializationContext::m_defaultContext,
                                    CompressionType_GZip));
     }},
    {"JSON", true, [](const COrders& o, const char* path) { o.ToJsonFile(path); },
     [](const COrders& o) { return Bytes(o.ToJsonStream()); }},
    {"Fast Infoset", false, [](const COrders& o, const char* path) { o.ToFastInfosetFile(path); },
     [](const COrders& o) { return Bytes(o.ToFastInfosetStream()); }},
};

class FileFaults : public testing::Test {
protected:
    void SetUp() override {
        if (!m_locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    }
    void TearDown() override { AsyncToXmlFile(false); }

private:
    KxTest::ScopedLocale m_locale{LC_ALL, "C.UTF-8"};
};

}  // namespace

TEST_F(FileFaults, UnwritablePathsFailWithThePathAndCreateNothing) {
    const CSmartPtr<COrders> orders = ReadOrders(OrdersXml(1, 2));
    const std::string missing = TmpPath("no-such-directory/orders.out");
    const std::string directory = TmpPath("faults-directory");
    mkdir(directory.c_str(), 0755);
    ASSERT_TRUE(IsDirectory(directory));
    // Creating a file fails before anything is written, so streaming makes no difference.
    for (const FileWriter& writer : kWriters) {
        for (const bool streaming : {false, true}) {
            for (const std::string& path : {missing, directory}) {
                SCOPED_TRACE(testing::Message() << writer.name << " streaming " << streaming
                                                << " to " << path);
                const StreamingScope scope(streaming);
                KxTest::ExpectKxError<CKxException>(
                    [&] { writer.write(*orders, path.c_str()); },
                    "Failed to write data to the file [" + path + "].");
                EXPECT_FALSE(PathExists(missing));
                EXPECT_TRUE(IsDirectory(directory));
            }
        }
    }
    rmdir(directory.c_str());
}

TEST_F(FileFaults, AFullDeviceFailsWithTheDocumentedMessage) {
    struct stat status;
    if (stat("/dev/full", &status) != 0 || !S_ISCHR(status.st_mode)) {
        GTEST_SKIP() << "no /dev/full";
    }
    // A small document is buffered until the file is closed and a large one fails while it is
    // written: both must be reported. Streamed text fails at its first flush, which names no
    // path.
    const CSmartPtr<COrders> small = ReadOrders(OrdersXml(1, 1));
    const CSmartPtr<COrders> large = ReadOrders(OrdersXml(1, 200));
    for (const FileWriter& writer : kWriters) {
        for (const COrders* orders : {small.Ptr(), large.Ptr()}) {
            for (const bool streaming : {false, true}) {
                SCOPED_TRACE(testing::Message() << writer.name << " orders "
                                                << orders->m_orders->GetCount() << " streaming "
                                                << streaming);
                const StreamingScope scope(streaming);
                EXPECT_EQ("", Mismatch([&] { writer.write(*orders, "/dev/full"); },
                                       streaming && writer.streams
                                           ? "Failed to write data to the file"
                                           : "Failed to write data to the file [/dev/full]."));
                EXPECT_TRUE(PathExists("/dev/full"));
            }
        }
    }
}

TEST_F(FileFaults, ADiskFullMidwayLeavesNoFileUnlessStreamed) {
    const rlim_t limit = 4 * 1024;
    const CSmartPtr<COrders> orders = ReadOrders(OrdersXml(1, 200));
    for (const FileWriter& writer : kWriters) {
        ASSERT_GT(writer.bytes(*orders).size(), 2 * limit) << writer.name;
        for (const bool streaming : {false, true}) {
            SCOPED_TRACE(testing::Message() << writer.name << " streaming " << streaming);
            const std::string path = TmpPath("faults-limited.out");
            // An existing file is replaced: its old contents cannot survive the failure.
            std::ofstream(path, std::ios::binary) << "old contents";
            const bool streamed = streaming && writer.streams;
            EXPECT_EQ("", MismatchUnderFileSizeLimit(
                              limit,
                              [&] {
                                  AsyncToXmlFile(streaming);
                                  writer.write(*orders, path.c_str());
                              },
                              streamed ? "Failed to write data to the file"
                                       : "Failed to write data to the file [" + path + "]."));
            if (streamed) {
                // What reached the file before the limit is the start of the document.
                const std::string left = ReadFileBytes(path);
                EXPECT_EQ(limit, left.size());
                EXPECT_EQ(writer.bytes(*orders).substr(0, left.size()), left);
            } else {
                EXPECT_FALSE(PathExists(path));
            }
            std::remove(path.c_str());
        }
    }
}

TEST_F(FileFaults, AnObjectThatFailsWhileWrittenLeavesNoFileUnlessStreamed) {
    const std::string path = TmpPath("faults-invalid.out");
    CSmartPtr<COrders> orders = ReadOrders(OrdersXml(1, 300));
    // The last order cannot be written: the failure comes after many kilobytes of output.
    orders->m_orders->Item(299)->m_status = static_cast<StatusType>(9);
    for (const FileWriter& writer : kWriters) {
        for (const bool streaming : {false, true}) {
            SCOPED_TRACE(testing::Message() << writer.name << " streaming " << streaming);
            std::remove(path.c_str());
            const StreamingScope scope(streaming);
            try {
                writer.write(*orders, path.c_str());
                ADD_FAILURE() << "nothing was thrown";
            } catch (const CKxException& e) {
                EXPECT_EQ("The value [9] is not a valid StatusType", Innermost(e).GetMessage());
            }
            if (streaming && writer.streams) {
                const std::string left = ReadFileBytes(path);
                EXPECT_GT(left.size(), 4096u);
                EXPECT_EQ(std::string::npos, left.find("Order id=\"A-300\""));
            } else {
                EXPECT_FALSE(PathExists(path));
            }
        }
    }
    std::remove(path.c_str());
}

namespace {

// A way of reading: the bytes that hold a document given as XML text (made by an untyped
// element that read the text, so invalid content can be expressed in every format), and the
// entry point that reads them into an object.
struct ReadForm {
    const char* name;
    std::function<std::string(const std::string& xml)> encode;
    std::function<void(COrders&, const std::string& bytes)> read;
};

CSmartPtr<CElement> Untyped(const std::string& xml) {
    CSmartPtr<CElement> element(new CElement("", ""));
    element->FromXml(xml.c_str());
    return element;
}

const unsigned char* Data(const std::string& bytes) {
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

const ReadForm kReadForms[] = {
    {"FromXml", [](const std::string& xml) { return xml; },
     [](COrders& o, const std::string& bytes) { o.FromXml(bytes.c_str()); }},
    {"FromXmlStream gzip",
     [](const std::string& xml) {
         return Bytes(Untyped(xml)->ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF,
                                                CSerializationContext::m_defaultContext,
                                                CompressionType_GZip));
     },
     [](COrders& o, const std::string& bytes) { o.FromXmlStream(Data(bytes), bytes.size()); }},
    {"FromXmlFile",
     [](const std::string& xml) { return xml; },
     [](COrders& o, const std::string& bytes) {
         const std::string path = TmpPath("faults-read.xml");
         std::ofstream(path, std::ios::binary) << bytes;
         o.FromXmlFile(path.c_str());
         std::remove(path.c_str());
     }},
    {"FromJson", [](const std::string& xml) { return Untyped(xml)->ToJson(false); },
     [](COrders& o, const std::string& bytes) { o.FromJson(bytes.c_str()); }},
    {"FromJsonStream zlib",
     [](const std::string& xml) {
         return Bytes(Untyped(xml)->ToJsonStream(false, XmlEncoding_UTF8, EOLType_LF,
                                                 CSerializationContext::m_defaultContext,
                                                 CompressionType_ZLib));
     },
     [](COrders& o, const std::string& bytes) { o.FromJsonStream(Data(bytes), bytes.size()); }},
    {"Fast Infoset",
     [](const std::string& xml) { return Bytes(Untyped(xml)->ToFastInfosetStream()); },
     [](COrders& o, const std::string& bytes) { o.FromXmlStream(Data(bytes), bytes.size()); }},
};

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    const size_t at = text.find(from);
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

}  // namespace

TEST_F(FileFaults, AFailedReadLeavesTheObjectReadyForTheNextDocument) {
    const std::string before = OrdersXml(1, 3);
    const std::string after = OrdersXml(7, 2);
    const std::string lastOrderInvalid =
        kOrdersOpen + OrderXml(1) + OrderXml(2) + OrderXml(3, "lost") + "</Orders>\n";
    struct Bad {
        const char* name;
        // The bad input of a form, from the form and the good document `before`.
        std::function<std::string(const ReadForm&)> bytes;
    };
    const Bad bads[] = {
        {"cut in half",
         [&](const ReadForm& f) {
             const std::string whole = f.encode(before);
             return whole.substr(0, whole.size() / 2);
         }},
        {"wrong root",
         [&](const ReadForm& f) {
             return f.encode("<Invoice xmlns=\"urn:bench:orders\" terms=\"1\">"
                             "<Reference>R</Reference><DueDate>2024-01-01</DueDate></Invoice>");
         }},
        {"invalid value in the last order", [&](const ReadForm& f) { return f.encode(lastOrderInvalid); }},
        {"unknown element in the second order",
         [&](const ReadForm& f) {
             return f.encode(Replaced(before, "<Sku>SKU-2</Sku>", "<Colour>red</Colour>"));
         }},
        {"bad decimal in the first order",
         [&](const ReadForm& f) {
             return f.encode(Replaced(before, "<UnitPrice>12.50", "<UnitPrice>12,50"));
         }},
    };
    const KxExampleTest::Equality same = KxExampleTest::ByOperator<COrders>();
    const CSmartPtr<COrders> expected = ReadOrders(after);
    ASSERT_FALSE(same(*expected, *ReadOrders(before)));
    for (const ReadForm& form : kReadForms) {
        const std::string good = form.encode(after);
        const std::string first = form.encode(before);
        CSmartPtr<COrders> fresh(new COrders());
        form.read(*fresh, good);
        SCOPED_TRACE(form.name);
        ASSERT_TRUE(same(*expected, *fresh));
        for (const Bad& bad : bads) {
            SCOPED_TRACE(bad.name);
            const std::string input = bad.bytes(form);
            CSmartPtr<COrders> orders(new COrders());
            form.read(*orders, first);
            EXPECT_THROW(form.read(*orders, input), CKxException);
            form.read(*orders, good);
            EXPECT_TRUE(same(*expected, *orders));
            EXPECT_EQ(expected->ToXml(), orders->ToXml());
            // A failure on an object that never read anything is no different.
            CSmartPtr<COrders> unused(new COrders());
            EXPECT_THROW(form.read(*unused, input), CKxException);
            form.read(*unused, good);
            EXPECT_TRUE(same(*expected, *unused));
        }
    }
}
