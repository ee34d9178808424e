#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "KxTestSupport.h"

using namespace KxXmlLib16;

TEST(CKxException, PathIsAppendedToTheMessageOnlyWhenGiven) {
    CKxException withPath("Value too long", "Root/Item");
    EXPECT_EQ("Value too long\nPath: Root/Item", withPath.GetMessage());
    EXPECT_EQ("Root/Item", withPath.GetPath());

    CKxException emptyPath("Value too long", std::string());
    EXPECT_EQ("Value too long", emptyPath.GetMessage());
    EXPECT_EQ("", emptyPath.GetPath());

    CKxException noPath("plain");
    EXPECT_EQ("plain", noPath.GetMessage());
    EXPECT_EQ(nullptr, noPath.GetInnerException());
}

TEST(CKxException, FullMessageListsTheChainOutermostFirst) {
    CKxException innermost("third");
    CKxValidationException middle("second", "A/B", innermost);
    CKxException outer("first", middle);
    EXPECT_EQ("first\nsecond\nPath: A/B\nthird", outer.GetFullMessage());
    EXPECT_EQ("first", outer.GetMessage());

    CKxException alone("alone");
    EXPECT_EQ(alone.GetMessage(), alone.GetFullMessage());
}

TEST(CKxException, InnerExceptionIsAnIndependentCopyOfItsDynamicClass) {
    const CKxException* inner = nullptr;
    {
        CKxInvalidNamespaceException cause("wrong namespace", "X");
        CKxException outer("outer", cause);
        inner = outer.GetInnerException();
        ASSERT_NE(nullptr, inner);
        EXPECT_NE(static_cast<const CKxException*>(&cause), inner);
        EXPECT_NE(nullptr, dynamic_cast<const CKxInvalidNamespaceException*>(inner));
        CKxException copy(outer);
        EXPECT_NE(inner, copy.GetInnerException());
        EXPECT_EQ(outer.GetFullMessage(), copy.GetFullMessage());
    }
}

TEST(CKxException, CloneKeepsTheDynamicClass) {
    CKxInvalidNamespaceException original("bad ns", "Root", CKxException("why"));
    const CKxException& asBase = original;
    std::unique_ptr<CKxException> clone(asBase.Clone());
    EXPECT_NE(nullptr, dynamic_cast<CKxInvalidNamespaceException*>(clone.get()));
    EXPECT_NE(nullptr, dynamic_cast<CKxValidationException*>(clone.get()));
    EXPECT_EQ(original.GetFullMessage(), clone->GetFullMessage());
    EXPECT_EQ("Root", clone->GetPath());

    // Every class clones to itself, and rethrowing the clone is caught by its own class.
    std::unique_ptr<CKxException> clones[] = {
        std::unique_ptr<CKxException>(CKxValidationException("v", "").Clone()),
        std::unique_ptr<CKxException>(CKxInvalidValueException("iv").Clone()),
        std::unique_ptr<CKxException>(CKxInvalidStateException("st").Clone()),
        std::unique_ptr<CKxException>(CKxInvalidParamException("pa").Clone()),
        std::unique_ptr<CKxException>(CKxOverFlowException("of").Clone()),
    };
    EXPECT_NE(nullptr, dynamic_cast<CKxValidationException*>(clones[0].get()));
    EXPECT_NE(nullptr, dynamic_cast<CKxInvalidValueException*>(clones[1].get()));
    EXPECT_NE(nullptr, dynamic_cast<CKxInvalidStateException*>(clones[2].get()));
    EXPECT_NE(nullptr, dynamic_cast<CKxInvalidParamException*>(clones[3].get()));
    EXPECT_NE(nullptr, dynamic_cast<CKxOverFlowException*>(clones[4].get()));
    EXPECT_EQ(nullptr, dynamic_cast<CKxValidationException*>(clones[2].get()));
}

TEST(CKxException, AssignmentCopiesMessageAndInnerButNotPath) {
    CKxException target("old", "Old/Path");
    CKxException source("new", "New/Path", CKxException("cause"));
    target = source;
    EXPECT_EQ("new\nPath: New/Path", target.GetMessage());
    EXPECT_EQ("Old/Path", target.GetPath());
    ASSERT_NE(nullptr, target.GetInnerException());
    EXPECT_NE(source.GetInnerException(), target.GetInnerException());
    EXPECT_EQ("cause", target.GetInnerException()->GetMessage());
}

TEST(CKxException, InvalidValueHasNoPathAndIsAValidationException) {
    try {
        throw CKxInvalidValueException("bad value", CKxException("cause"));
    } catch (const CKxValidationException& e) {
        EXPECT_EQ("", e.GetPath());
        EXPECT_EQ("bad value\ncause", e.GetFullMessage());
    }
}
