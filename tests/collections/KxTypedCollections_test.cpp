#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

template <typename Col>
CXmlTypeCollection* Make(const char* maxInclusive, long long maxLength) {
    return new Col("n", "", 0, -1, "", -1, maxLength, "", maxInclusive, "", "", -1, -1, -1,
                   CWhitespaceUtils::WhitespaceRule_Collapse, "");
}

std::string Write(const CXmlTypeCollection& col) {
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.WriteStartElement("r", "");
    col.ToXml_Int(&writer, false, "", CSerializationContext::m_defaultContext, false);
    writer.WriteEndElement();
    writer.Close();
    return stream.GetText();
}

std::string Expected(const std::vector<std::string>& texts) {
    std::string out = "<r>\n";
    for (const std::string& text : texts) out += "\t<n>" + text + "</n>\n";
    return out + "</r>\n";
}

// Index handling through the typed Item / AddAt of each class: re-inserting the second item at
// the head must write it first.
template <typename Col>
void CheckTypedIndexes(const std::string& first, const std::string& second,
                       const std::string& firstWritten) {
    CSmartPtr<Col> col(static_cast<Col*>(Make<Col>("", -1)));
    col->AddFromString(first);
    col->AddFromString(second);
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Item(2); },
                                                    "Index 2 is out of range, use 0 - 2");
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Item(-1); },
                                                    "Index -1 is out of range, use 0 - 2");
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->AddAt(3, col->Item(0)); },
                                                    "Index out of range");
    KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->AddAt(-1, col->Item(0)); },
                                                    "Index out of range");
    col->AddAt(0, col->Item(1));
    col->AddAt(3, col->Item(1));  // count appends
    EXPECT_EQ(4, col->GetCount());
    EXPECT_EQ(Expected({second, firstWritten, second, firstWritten}), Write(*col));
}

struct Recorder : IEventSink {
    void OnEvent(CXmlObjectBase*, MsgType type, void* data) override {
        const bool indexed = type == MsgType_CollectionRemove || type == MsgType_CollectionRemoveComplete;
        log.push_back(std::to_string(type) + (indexed ? ":" + std::to_string(*static_cast<int*>(data)) : ""));
    }
    std::vector<std::string> log;
};

struct Case {
    const char* name;
    ItemType type;
    CXmlTypeCollection* (*make)(const char*, long long);
    void (*indexes)(const std::string&, const std::string&, const std::string&);
    const char* first;
    const char* second;
    const char* firstWritten;  // the formatter's form of `first`
    const char* bad;           // not a lexical form of the type
    const char* maxInclusive;  // a bound `second` breaks (with maxLength)
    long long maxLength;
};

#define ROW(Col, type, ...) {#Col, type, &Make<Col>, &CheckTypedIndexes<Col>, __VA_ARGS__}

const Case kCases[] = {
    ROW(ChexBinaryCol, ItemType_hexBinary, "0a1b", "0A1B2C", "0A1B", "xyz", "", 2),
    ROW(Cbase64BinaryCol, ItemType_base64Binary, "AQI=", "AQIDBA==", "AQI=", nullptr, "", 2),
    ROW(Ci1Col, ItemType_i1, "+7", "100", "7", "200", "99", -1),
    ROW(Ci2Col, ItemType_i2, "-7", "300", "-7", "40000", "299", -1),
    ROW(Ci4Col, ItemType_i4, "1", "2", "1", "1.5", "1", -1),
    ROW(Ci8Col, ItemType_i8, "-9000000000", "9000000000", "-9000000000", "x", "0", -1),
    ROW(Cui1Col, ItemType_ui1, "7", "255", "7", "-1", "254", -1),
    ROW(Cui2Col, ItemType_ui2, "7", "65535", "7", "65536", "65534", -1),
    ROW(Cui4Col, ItemType_ui4, "7", "4000000000", "7", "x", "4000", -1),
    ROW(Cui8Col, ItemType_ui8, "7", "18000000000000000000", "7", "abc", "1000", -1),
    ROW(Cr4Col, ItemType_r4, "1.5", "3.5", "1.5", "one", "2", -1),
    ROW(Cr8Col, ItemType_r8, "-0.25", "1000", "-0.25", "1..2", "2", -1),
    ROW(CdurationCol, ItemType_duration, "P1D", "P3D", "P1D", "1D", "P2D", -1),
    ROW(CyearMonthCol, ItemType_yearMonth, "2001-02", "2003-04", "2001-02", "2001", "2002-01", -1),
    ROW(CmonthDayCol, ItemType_monthDay, "--02-03", "--05-06", "--02-03", "02-03", "--04-01", -1),
    ROW(CyearCol, ItemType_year, "2001", "2010", "2001", "twenty", "2005", -1),
    ROW(CmonthCol, ItemType_month, "--02", "--11", "--02", "--13", "--10", -1),
    ROW(CdayCol, ItemType_day, "---03", "---30", "---03", "---32", "---29", -1),
    ROW(CdateCol, ItemType_date, "2001-02-03", "2005-01-01", "2001-02-03", "2001-02-30", "2004-12-31", -1),
    ROW(CdatetimeCol, ItemType_datetime, "2001-02-03T04:05:06", "2009-01-01T00:00:00", "2001-02-03T04:05:06", "2001-02-03", "2008-01-01T00:00:00", -1),
    ROW(CtimeCol, ItemType_time, "04:05:06", "23:00:00", "04:05:06", "25:00:00", "12:00:00", -1),
    ROW(CstringCol, ItemType_string, "  a  b ", "long text", "a b", nullptr, "", 3),
    ROW(CbooleanCol, ItemType_boolean, "1", "false", "true", "yes", nullptr, -1),
    ROW(CdecimalCol, ItemType_decimal, "1.50", "20.5", "1.5", "1,5", "20", -1),
    ROW(CintegerCol, ItemType_integer, "-5", "123456789012345678901234567890", "-5", "1e3", "100", -1),
};

#undef ROW

}  // namespace

TEST(KxTypedCollections, ParseWriteAndIndexEveryMember) {
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.name);
        CSmartPtr<CXmlTypeCollection> col(row.make("", -1));
        EXPECT_EQ(row.type, col->GetItemType());
        col->AddFromString(row.first);
        col->AddFromString(row.second);
        EXPECT_EQ(2, col->GetCount());
        const std::string written = Write(*col);
        EXPECT_EQ(0u, written.find("<r>\n\t<n>" + std::string(row.firstWritten) + "</n>\n"))
            << written;

        // Reading the written document back gives the same text.
        CXmlDocument document;
        document.LoadXml(written.c_str());
        CXmlElement* root = document.GetDocumentElement();
        CSmartPtr<CXmlTypeCollection> read(row.make("", -1));
        EXPECT_EQ(nullptr, read->FromXml_Int(root, root->GetFirstElement(),
                                             CSerializationContext::m_defaultContext, false));
        EXPECT_EQ(written, Write(*read));

        if (row.bad) {
            EXPECT_THROW(col->AddFromString(row.bad), CKxException);
            EXPECT_EQ(2, col->GetCount());
        }
        row.indexes(row.first, row.second, row.firstWritten);
    }
}

TEST(KxTypedCollections, FacetViolationsInsertNothing) {
    for (const Case& row : kCases) {
        if (!row.maxInclusive) continue;
        SCOPED_TRACE(row.name);
        CSmartPtr<CXmlTypeCollection> col(row.make(row.maxInclusive, row.maxLength));
        col->AddFromString(row.first);
        EXPECT_ANY_THROW(col->AddFromString(row.second));
        EXPECT_EQ(1, col->GetCount());
    }
}

TEST(KxTypedCollections, RemoveAndClearFireEventsWithTheIndex) {
    for (const Case& row : kCases) {
        SCOPED_TRACE(row.name);
        CSmartPtr<CXmlTypeCollection> col(row.make("", -1));
        for (int i = 0; i < 3; ++i) col->AddFromString(row.first);
        Recorder sink;
        col->AddEventListener(&sink);
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Remove(3); },
                                                        "Index 3 is out of range, use 0 - 3");
        EXPECT_EQ((std::vector<std::string>{"3:3"}), sink.log);  // the attempt is still heard
        sink.log.clear();
        col->Remove(2);
        EXPECT_EQ((std::vector<std::string>{"3:2", "4:2", "0"}), sink.log);
        sink.log.clear();
        col->Clear();
        EXPECT_EQ(0, col->GetCount());
        EXPECT_EQ((std::vector<std::string>{"3:0", "4:0", "0", "3:0", "4:0", "0"}), sink.log);
    }
}

TEST(KxTypedCollections, DateMembersRefuseOtherKinds) {
    struct Row { CXmlTypeCollection* (*make)(const char*, long long); const char* message; };
    const Row rows[] = {
        {&Make<CdateCol>, "Dates added to this collection must be of type dt_date"},
        {&Make<CdatetimeCol>, "Dates added to this collection must be of type dt_dateTime"},
        {&Make<CtimeCol>, "Dates added to this collection must be of type dt_time"},
        {&Make<CmonthDayCol>, "Dates added to this collection must be of type dt_gMonthDay"},
        {&Make<CyearMonthCol>, "Dates added to this collection must be of type dt_gYearMonth"},
    };
    const CDateTime year = CConversions::yearMonthFromString("2001-02", CWhitespaceUtils::WhitespaceRule_None);
    const CDateTime date = CConversions::dateFromString("2001-02-03", CWhitespaceUtils::WhitespaceRule_None);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        CSmartPtr<CdatetimeBaseCol> col(static_cast<CdatetimeBaseCol*>(row.make("", -1)));
        const CDateTime& wrong = col->GetItemType() == ItemType_yearMonth ? date : year;
        Recorder sink;
        col->AddEventListener(&sink);
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { col->Add(wrong); }, row.message);
        EXPECT_EQ(0, col->GetCount());
        EXPECT_TRUE(sink.log.empty());
    }
    CSmartPtr<CdateCol> dates(new CdateCol("n", "", 0, -1));
    dates->Add(date);
    EXPECT_EQ(CDateTime::dt_date, dates->Item(0).GetType());
}

TEST(KxTypedCollections, WritingChecksTheCountFirst) {
    CSmartPtr<Ci4Col> col(new Ci4Col("n", "", 1, 2));
    KxTest::ExpectKxError<CKxValidationException>(
        [&] { Write(*col); }, "The Minimum number of [n] elements allowed in this collection is 1");
    col->Add(1);
    col->Add(2);
    EXPECT_EQ("<r>\n\t<n>1</n>\n\t<n>2</n>\n</r>\n", Write(*col));
}

TEST(KxTypedCollections, AddAtIsHeardBeforeItsChecks) {
    struct Row {
        int index;
        long value;
        const char* message;  // null: inserted
        std::vector<std::string> events;
    };
    const Row rows[] = {
        {1, 1, nullptr, {"1", "2", "0"}},
        {2, 1, "Index out of range", {"1"}},
        {0, 8, "Invalid Value for n [8]", {"1"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.index);
        CSmartPtr<Ci4Col> col(new Ci4Col("n", "", 0, -1, "", -1, -1, "", "5"));
        col->Add(3);
        Recorder sink;
        col->AddEventListener(&sink);
        if (row.message) {
            std::string thrown;
            try {
                col->AddAt(row.index, row.value);
            } catch (const CKxException& e) {
                thrown = e.GetMessage();
            }
            EXPECT_EQ(row.message, thrown);
            EXPECT_EQ(1, col->GetCount());
        } else {
            col->AddAt(row.index, row.value);
            EXPECT_EQ(row.value, col->Item(row.index));
        }
        EXPECT_EQ(row.events, sink.log);
    }
}
