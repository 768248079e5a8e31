// kelm_record_holder: a decoded record released with kelmAsnFreeObj when its holder goes. The
// sanitizer builds (LeakSanitizer) check that nothing a decode allocated outlives the holder.
#include <gtest/gtest.h>

#include "kelm/kelmasn.h"
#include "record_test_support.h"

namespace {

using kelm_test::Bytes;

// The header, then attrlist_t { SEQUENCE OF { attr_t { "a", SEQUENCE OF { value_t { 1, "x", '' } }
// } } }
const Bytes kOneAttribute = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x13, 0x30, 0x11, 0x30,
                             0x0F, 0x0C, 0x01, 0x61, 0x30, 0x0A, 0x30, 0x08, 0x02,
                             0x01, 0x01, 0x0C, 0x01, 0x78, 0x04, 0x00};

TEST(RecordHolder, StartsWithAZeroedRecord) {
    kelm_record_holder<attrlist_s_t> list;
    EXPECT_EQ(list->attr_count, 0u);
    EXPECT_EQ(list->attrs, nullptr);
}

TEST(RecordHolder, HoldsWhatADecodeFilled) {
    kelm_record_holder<attrlist_s_t> list;
    ASSERT_EQ(kelm_test::decode_record(kOneAttribute, list.record()), 0u);
    ASSERT_EQ(list->attr_count, 1u);
    EXPECT_STREQ(list->attrs[0].name, "a");
    ASSERT_EQ(list->attrs[0].value_count, 1u);
    EXPECT_EQ(list->attrs[0].values[0].value_type, 1u);
    EXPECT_STREQ(list->attrs[0].values[0].str_value, "x");
}

TEST(RecordHolder, ReleasesAPartlyFilledRecordAfterAFailedDecode) {
    const Bytes cut(kOneAttribute.begin(), kOneAttribute.end() - 3);
    kelm_record_holder<attrlist_s_t> list;
    EXPECT_NE(kelm_test::decode_record(cut, list.record()), 0u);
}

TEST(RecordHolder, ResetReleasesAndZeroesForAnotherDecode) {
    kelm_record_holder<attrlist_s_t> list;
    ASSERT_EQ(kelm_test::decode_record(kOneAttribute, list.record()), 0u);
    list.reset();
    EXPECT_EQ(list->attr_count, 0u);
    EXPECT_EQ(list->attrs, nullptr);
    ASSERT_EQ(kelm_test::decode_record(kOneAttribute, list.record()), 0u);
    EXPECT_EQ(list->attr_count, 1u);
}

} // namespace
