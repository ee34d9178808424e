#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

typedef CFastInfosetContext Ctx;

void ExpectEntry(const Ctx& context, ItemType type, Ctx::EncodedCharacterString kind,
                 unsigned long index) {
    SCOPED_TRACE(::testing::Message() << "item type " << static_cast<int>(type));
    const Ctx::EncodingEntry& entry = context.GetEncoding(type);
    EXPECT_EQ(kind, entry.first);
    EXPECT_EQ(index, entry.second);
}

}  // namespace

TEST(CFastInfosetContext, DefaultsEncodeEverythingAsPlainStrings) {
    const Ctx context;
    EXPECT_EQ(0, context.GetDefaultStringEncoding());
    EXPECT_EQ(6u, context.GetAttributeMaxAddLength());
    EXPECT_EQ(6u, context.GetElementMaxAddLength());
    EXPECT_FALSE(context.GetUseGeneratedVocabulary());
    EXPECT_EQ("", context.GetExternalVocabularyURI());
    for (int type = 0; type < Ctx::EncodingTableSize; ++type) {
        ExpectEntry(context, static_cast<ItemType>(type), Ctx::ECS_Utf8, 0);
    }
    EXPECT_EQ(1u, context.GetVocabulary().GetPrefixNamesTable().size());
    EXPECT_TRUE(context.GetVocabulary().GetLocalNamesTable().empty());
}

TEST(CFastInfosetContext, SuggestedValuesFollowTheWidestFittingAlgorithm) {
    struct Case {
        ItemType type;
        Ctx::EncodedCharacterString kind;
        unsigned long index;
    };
    const Case cases[] = {
        {ItemType_hexBinary, Ctx::ECS_EncodingAlgorithm, 1},
        {ItemType_base64Binary, Ctx::ECS_EncodingAlgorithm, 2},
        {ItemType_i1, Ctx::ECS_EncodingAlgorithm, 3}, {ItemType_i2, Ctx::ECS_EncodingAlgorithm, 3},
        {ItemType_i4, Ctx::ECS_EncodingAlgorithm, 4}, {ItemType_i8, Ctx::ECS_EncodingAlgorithm, 5},
        {ItemType_ui1, Ctx::ECS_EncodingAlgorithm, 3},
        {ItemType_ui2, Ctx::ECS_EncodingAlgorithm, 4},
        {ItemType_ui4, Ctx::ECS_EncodingAlgorithm, 5},
        {ItemType_ui8, Ctx::ECS_EncodingAlgorithm, 5}, {ItemType_r4, Ctx::ECS_EncodingAlgorithm, 7},
        {ItemType_r8, Ctx::ECS_EncodingAlgorithm, 8}, {ItemType_duration, Ctx::ECS_Utf8, 0},
        {ItemType_yearMonth, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_monthDay, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_year, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_month, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_day, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_date, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_datetime, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_time, Ctx::ECS_RestrictedAlphabet, 2},
        {ItemType_boolean, Ctx::ECS_EncodingAlgorithm, 6},
        {ItemType_decimal, Ctx::ECS_RestrictedAlphabet, 1},
        {ItemType_integer, Ctx::ECS_RestrictedAlphabet, 1},
        // No suggestion: these keep what was set before.
        {ItemType_Invalid, Ctx::ECS_EncodingAlgorithm, 10},
        {ItemType_char, Ctx::ECS_EncodingAlgorithm, 10},
        {ItemType_string, Ctx::ECS_EncodingAlgorithm, 10},
        {ItemType_XmlObject, Ctx::ECS_EncodingAlgorithm, 10},
        {ItemType_XmlCollection, Ctx::ECS_EncodingAlgorithm, 10},
    };
    Ctx context;
    // Mark every entry first, so both overwritten and kept entries are seen.
    for (int type = 0; type < Ctx::EncodingTableSize; ++type) {
        context.SetEncoding(static_cast<ItemType>(type), Ctx::ECS_EncodingAlgorithm, 10);
    }
    context.SetSuggestedValues();
    for (const Case& row : cases) ExpectEntry(context, row.type, row.kind, row.index);
}

TEST(CFastInfosetContext, ItemTypesOutsideTheTableAreRejected) {
    struct Case {
        int type;
        const char* message;
    };
    const Case cases[] = {
        {-1, "Invalid item type [-1] for the Fast Infoset encoding table."},
        {29, "Invalid item type [29] for the Fast Infoset encoding table."},
    };
    Ctx context;
    for (const Case& row : cases) {
        SCOPED_TRACE(row.type);
        const ItemType type = static_cast<ItemType>(row.type);
        KxTest::ExpectKxError<CKxInvalidParamException>([&] { context.GetEncoding(type); },
                                                        row.message);
        KxTest::ExpectKxError<CKxInvalidParamException>(
            [&] { context.SetEncoding(type, Ctx::ECS_EncodingAlgorithm, 1); }, row.message);
    }
}

TEST(CFastInfosetContext, CopiesCarryEveryOptionAndAnIndependentVocabulary) {
    Ctx original;
    original.SetSuggestedValues();
    original.SetAttributeMaxAddLength(3);
    original.SetElementMaxAddLength(11);
    original.SetUseGeneratedVocabulary(true);
    original.SetExternalVocabularyURI("urn:voc");
    original.GetVocabulary().AddElement("", "urn:a", "order");

    Ctx copy(original);
    Ctx assigned;
    assigned = original;
    for (Ctx* context : {&copy, &assigned}) {
        ExpectEntry(*context, ItemType_i4, Ctx::ECS_EncodingAlgorithm, 4);
        EXPECT_EQ(3u, context->GetAttributeMaxAddLength());
        EXPECT_EQ(11u, context->GetElementMaxAddLength());
        EXPECT_TRUE(context->GetUseGeneratedVocabulary());
        EXPECT_EQ("urn:voc", context->GetExternalVocabularyURI());
        unsigned long index = 0;
        EXPECT_TRUE(context->GetVocabulary().FindElementNameIndex("", "urn:a", "order", index));
        EXPECT_EQ(1u, index);
        context->GetVocabulary().AddElement("", "", "extra");
        context->SetEncoding(ItemType_i4, Ctx::ECS_Utf8, 0);
    }
    unsigned long index = 0;
    EXPECT_FALSE(original.GetVocabulary().FindElementNameIndex("", "", "extra", index));
    ExpectEntry(original, ItemType_i4, Ctx::ECS_EncodingAlgorithm, 4);
}
