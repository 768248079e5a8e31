// Actions, action groups and the set of action groups through their typed entry points: slot
// arrays that keep every filled slot's position with NULL fillers, read up to 32 slots.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "actionidl_asn.h"
#include "asn_test_util.h"
#include "record_test_support.h"
#include "test_locale.h"

using kelm_test::bytes_of;
using kelm_test::dup_text;
using kelm_test::tlv;
using kelm_test::with_header;
using Bytes = std::vector<unsigned char>;

namespace {

const Bytes kFiller = {0x05, 0x00};
const Bytes kEmptyAttrlist = {0x30, 0x02, 0x30, 0x00};

Bytes concat(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

Bytes repeat(const Bytes& part, unsigned int times) {
    Bytes out;
    for (unsigned int i = 0; i < times; ++i)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

// A malloc'ed action, as a caller's record holds it.
ekaction_s_t* new_action(uint32_t number, const char* name, const char* label, const char* text,
                         uint32_t first, uint32_t second) {
    auto* action = static_cast<ekaction_s_t*>(std::calloc(1, sizeof(ekaction_s_t)));
    action->action_number = number;
    action->action_name = name ? dup_text(name) : nullptr;
    action->action_label = label ? dup_text(label) : nullptr;
    action->action_text = text ? dup_text(text) : nullptr;
    action->first_number = first;
    action->second_number = second;
    return action;
}

// The action {1, "a", "b", "c", 2, 3, no attributes} and its encoding.
ekaction_s_t* small_action() {
    return new_action(1, "a", "b", "c", 2, 3);
}
const Bytes kSmallAction = {0x30, 0x16, 0x02, 0x01, 0x01, 0x0C, 0x01, 0x61, 0x0C, 0x01, 0x62, 0x0C,
                            0x01, 0x63, 0x02, 0x01, 0x02, 0x02, 0x01, 0x03, 0x30, 0x02, 0x30, 0x00};

// Records as the caller owns them: released with the free entry point when they go.
using Group = kelm_record_holder<ekaction_group_s_t>;
using Groups = kelm_record_holder<ekaction_groups_s_t>;
using Action = kelm_record_holder<ekaction_s_t>;

template <class Record> Bytes encode(Record& record, unsigned int expected_status = 0) {
    kelm_asn_buffer_t out{0, nullptr};
    EXPECT_EQ(kelmAsnEncodeObj(out, record), expected_status);
    Bytes bytes = bytes_of(out);
    kelm_asn_buffer_free(out);
    return bytes;
}

template <class Record> unsigned int decode(const Bytes& wire, Record& record) {
    // An exact-size copy, so that the sanitizers catch any read past the input.
    std::unique_ptr<unsigned char[]> exact(new unsigned char[wire.size()]);
    std::copy(wire.begin(), wire.end(), exact.get());
    kelm_asn_buffer_t in{wire.size(), exact.get()};
    return kelmAsnDecodeObj(in, record);
}

void expect_small_action(const ekaction_s_t* action) {
    ASSERT_NE(action, nullptr);
    EXPECT_EQ(action->action_number, 1u);
    EXPECT_STREQ(action->action_name, "a");
    EXPECT_STREQ(action->action_label, "b");
    EXPECT_STREQ(action->action_text, "c");
    EXPECT_EQ(action->first_number, 2u);
    EXPECT_EQ(action->second_number, 3u);
    EXPECT_EQ(action->attrs.attr_count, 0u);
    EXPECT_EQ(action->attrs.attrs, nullptr);
}

// A group record named "g" on the wire around the given slot list contents.
Bytes group_wire(const Bytes& slot_contents) {
    return tlv(0x30, concat({{0x0C, 0x01, 'g'}, tlv(0x30, slot_contents), kEmptyAttrlist}));
}

} // namespace

// --- exact bytes -----------------------------------------------------------------------------

TEST(ActionGroup, AnActionInSlotFiveIsWrittenAfterFiveFillers) {
    Group group;
    group.record().group_name = dup_text("g");
    group.record().actions[5] = small_action();
    const Bytes wire = encode(group.record());
    EXPECT_EQ(wire,
              with_header({0x30, 0x2B, 0x0C, 0x01, 0x67, 0x30, 0x22, 0x05, 0x00, 0x05, 0x00, 0x05,
                           0x00, 0x05, 0x00, 0x05, 0x00, 0x30, 0x16, 0x02, 0x01, 0x01, 0x0C, 0x01,
                           0x61, 0x0C, 0x01, 0x62, 0x0C, 0x01, 0x63, 0x02, 0x01, 0x02, 0x02, 0x01,
                           0x03, 0x30, 0x02, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));

    Group back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    EXPECT_STREQ(back.record().group_name, "g");
    for (unsigned int i = 0; i < kelm_action_slot_count; ++i) {
        SCOPED_TRACE(::testing::Message() << "slot " << i);
        if (i == 5)
            expect_small_action(back.record().actions[i]);
        else
            EXPECT_EQ(back.record().actions[i], nullptr);
    }
}

TEST(ActionGroup, AGroupWithEveryActionSlotEmptyHasAnEmptySlotList) {
    Group group;
    EXPECT_EQ(encode(group.record()),
              with_header({0x30, 0x08, 0x0C, 0x00, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    Group back;
    ASSERT_EQ(decode(encode(group.record()), back.record()), 0u);
    for (ekaction_s_t* slot : back.record().actions)
        EXPECT_EQ(slot, nullptr);
    ASSERT_NE(back.record().group_name, nullptr);
    EXPECT_STREQ(back.record().group_name, "");
}

TEST(ActionGroup, EmptySlotsAfterTheLastFilledOneAreNotWritten) {
    Group group;
    group.record().group_name = dup_text("g");
    group.record().actions[0] = small_action();
    group.record().actions[2] = small_action();
    EXPECT_EQ(encode(group.record()),
              with_header(group_wire(concat({kSmallAction, kFiller, kSmallAction}))));
}

TEST(ActionGroup, OnlyTheLastSlotFilledIsWrittenAfterThirtyOneFillers) {
    Group group;
    group.record().group_name = dup_text("g");
    group.record().actions[31] = small_action();
    const Bytes wire = encode(group.record());
    EXPECT_EQ(wire, with_header(group_wire(concat({repeat(kFiller, 31), kSmallAction}))));
    Group back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    for (unsigned int i = 0; i < 31; ++i)
        EXPECT_EQ(back.record().actions[i], nullptr) << "slot " << i;
    expect_small_action(back.record().actions[31]);
}

TEST(ActionGroup, AllThirtyTwoSlotsFilledRoundTrip) {
    Group group;
    group.record().group_name = dup_text("all");
    for (unsigned int i = 0; i < kelm_action_slot_count; ++i)
        group.record().actions[i] = new_action(i, "n", "l", "t", i * 2, i * 3);
    const Bytes wire = encode(group.record());
    Group back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    for (unsigned int i = 0; i < kelm_action_slot_count; ++i) {
        ASSERT_NE(back.record().actions[i], nullptr) << i;
        EXPECT_EQ(back.record().actions[i]->action_number, i);
        EXPECT_EQ(back.record().actions[i]->second_number, i * 3);
    }
    EXPECT_EQ(encode(back.record()), wire);
}

TEST(ActionGroup, AnInputListOfMoreThanThirtyTwoEntriesIsReadOnlyUpToThirtyTwoSlots) {
    // 40 filled entries: the 33rd to the 40th are decoded as objects but not copied.
    const Bytes wire = with_header(group_wire(repeat(kSmallAction, 40)));
    Group back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    for (unsigned int i = 0; i < kelm_action_slot_count; ++i) {
        SCOPED_TRACE(::testing::Message() << "slot " << i);
        expect_small_action(back.record().actions[i]);
    }
    // Slot 31 is the 32nd entry, whatever follows it.
    const Bytes mixed = with_header(
        group_wire(concat({repeat(kFiller, 31), kSmallAction, repeat(kFiller, 5), kSmallAction})));
    Group second;
    ASSERT_EQ(decode(mixed, second.record()), 0u);
    for (unsigned int i = 0; i < 31; ++i)
        EXPECT_EQ(second.record().actions[i], nullptr) << "slot " << i;
    expect_small_action(second.record().actions[31]);
}

TEST(ActionGroup, AnInputOfOnlyFillersDecodesToThirtyTwoEmptySlots) {
    for (unsigned int fillers : {1u, 31u, 32u, 33u, 100u}) {
        SCOPED_TRACE(::testing::Message() << fillers << " fillers");
        Group back;
        std::memset(back.record().actions, 0xEE, sizeof back.record().actions);
        ASSERT_EQ(decode(with_header(group_wire(repeat(kFiller, fillers))), back.record()), 0u);
        for (ekaction_s_t* slot : back.record().actions)
            EXPECT_EQ(slot, nullptr);
    }
}

TEST(ActionGroup, ASlotThatIsNeitherNullNorAnActionIsRefused) {
    Group back;
    const unsigned int status =
        decode(with_header(group_wire(concat({kFiller, {0x02, 0x01, 0x07}, kSmallAction}))),
               back.record());
    EXPECT_NE(status, 0u);
    EXPECT_NE(status, 0x10652196u);
}

TEST(ActionGroups, AGroupInSlotTwoIsWrittenAfterTwoFillers) {
    Groups set;
    set.record().groups[2] = static_cast<ekaction_group_s_t*>(std::calloc(1, 280));
    set.record().groups[2]->group_name = dup_text("x");
    const Bytes group = {0x30, 0x09, 0x0C, 0x01, 0x78, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00};
    const Bytes wire = encode(set.record());
    EXPECT_EQ(wire,
              with_header({0x30, 0x15, 0x30, 0x0F, 0x05, 0x00, 0x05, 0x00, 0x30, 0x09, 0x0C, 0x01,
                           0x78, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
    EXPECT_EQ(Bytes(wire.begin() + 12, wire.begin() + 23), group);

    Groups back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    for (unsigned int i = 0; i < kelm_action_slot_count; ++i) {
        if (i != 2) {
            EXPECT_EQ(back.record().groups[i], nullptr) << i;
            continue;
        }
        ASSERT_NE(back.record().groups[2], nullptr);
        EXPECT_STREQ(back.record().groups[2]->group_name, "x");
        for (ekaction_s_t* action : back.record().groups[2]->actions)
            EXPECT_EQ(action, nullptr);
    }
}

TEST(ActionGroups, AnEmptySetIsAnEmptySlotListAndAnEmptyAttributeList) {
    Groups set;
    EXPECT_EQ(encode(set.record()), with_header({0x30, 0x06, 0x30, 0x00, 0x30, 0x02, 0x30, 0x00}));
}

TEST(ActionGroups, GroupsAndActionsNestWithTheirAttributes) {
    Groups set;
    for (unsigned int g : {0u, 7u, 31u}) {
        auto* group = static_cast<ekaction_group_s_t*>(std::calloc(1, sizeof(ekaction_group_s_t)));
        group->group_name = dup_text("group " + std::to_string(g));
        group->actions[g % 5] = new_action(g, "x", nullptr, "", 0xFFFFFFFF, 0x80000000);
        group->attrs.attr_count = 1;
        group->attrs.attrs = static_cast<attr_s_t*>(std::calloc(1, sizeof(attr_s_t)));
        group->attrs.attrs[0].name = dup_text("k");
        set.record().groups[g] = group;
    }
    const Bytes wire = encode(set.record());
    Groups back;
    ASSERT_EQ(decode(wire, back.record()), 0u);
    for (unsigned int g = 0; g < kelm_action_slot_count; ++g) {
        SCOPED_TRACE(::testing::Message() << "group " << g);
        if (g != 0 && g != 7 && g != 31) {
            EXPECT_EQ(back.record().groups[g], nullptr);
            continue;
        }
        const ekaction_group_s_t* group = back.record().groups[g];
        ASSERT_NE(group, nullptr);
        EXPECT_EQ(std::string(group->group_name), "group " + std::to_string(g));
        ASSERT_EQ(group->attrs.attr_count, 1u);
        EXPECT_STREQ(group->attrs.attrs[0].name, "k");
        for (unsigned int a = 0; a < kelm_action_slot_count; ++a) {
            if (a != g % 5) {
                EXPECT_EQ(group->actions[a], nullptr) << a;
                continue;
            }
            const ekaction_s_t* action = group->actions[a];
            ASSERT_NE(action, nullptr);
            EXPECT_EQ(action->action_number, g);
            EXPECT_STREQ(action->action_name, "x");
            EXPECT_STREQ(action->action_label, "") << "a null text comes back empty";
            EXPECT_EQ(action->first_number, 0xFFFFFFFFu);
            EXPECT_EQ(action->second_number, 0x80000000u);
        }
    }
    Bytes again = encode(back.record());
    EXPECT_EQ(again, wire);
}

// --- integers --------------------------------------------------------------------------------

TEST(Action, ExtremeNumbersAreWrittenSignedAndReadBackWithTheirBitPatterns) {
    struct Row {
        uint32_t value;
        Bytes integer;
    } rows[] = {
        {0, {0x02, 0x01, 0x00}},
        {0x7F, {0x02, 0x01, 0x7F}},
        {0x80, {0x02, 0x02, 0x00, 0x80}},
        {0x7FFFFFFF, {0x02, 0x04, 0x7F, 0xFF, 0xFF, 0xFF}},
        {0x80000000, {0x02, 0x04, 0x80, 0x00, 0x00, 0x00}},
        {0xFFFFFFFF, {0x02, 0x01, 0xFF}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(::testing::Message() << std::hex << row.value);
        Action action;
        action.record().action_number = row.value;
        action.record().first_number = row.value;
        action.record().second_number = row.value;
        const Bytes wire = encode(action.record());
        const Bytes body = concat({row.integer,
                                   {0x0C, 0x00, 0x0C, 0x00, 0x0C, 0x00},
                                   row.integer,
                                   row.integer,
                                   kEmptyAttrlist});
        EXPECT_EQ(wire, with_header(tlv(0x30, body)));
        Action back;
        ASSERT_EQ(decode(wire, back.record()), 0u);
        EXPECT_EQ(back.record().action_number, row.value);
        EXPECT_EQ(back.record().first_number, row.value);
        EXPECT_EQ(back.record().second_number, row.value);
    }
}

TEST(Action, DecodingClearsTheWholeRecordFirst) {
    Action action;
    action.record().action_number = 9;
    const Bytes wire = encode(action.record());
    ekaction_s_t back;
    std::memset(&back, 0xEE, sizeof back);
    ASSERT_EQ(decode(wire, back), 0u);
    EXPECT_EQ(back.action_number, 9u);
    EXPECT_EQ(back.attrs.attr_count, 0u);
    EXPECT_EQ(back.attrs.attrs, nullptr);
    const unsigned char* raw = reinterpret_cast<const unsigned char*>(&back);
    for (size_t i = 4; i < 8; ++i)
        EXPECT_EQ(raw[i], 0) << "the padding after the number is cleared too, byte " << i;
    kelmAsnFreeObj(back);
}

// --- names -----------------------------------------------------------------------------------

TEST(ActionNames, TypeNamesAreCutToSixteenCharacters) {
    asn_ekaction_groups_t groups;
    asn_ekaction_group_t group;
    asn_ekaction_t action;
    EXPECT_STREQ(groups.get_type_name(), "ekaction_groups_");
    EXPECT_STREQ(group.get_type_name(), "ekaction_group_t");
    EXPECT_STREQ(action.get_type_name(), "ekaction_t");
    EXPECT_STREQ(group.element(1)->get_type_name(), "SARRAYOF");
    EXPECT_STREQ(groups.element(0)->get_type_name(), "SARRAYOF");
}

// --- local code set --------------------------------------------------------------------------

TEST(ActionLocalCodeSet, Latin1TextsTravelAsUtf8AndComeBack) {
    KELM_SKIP_UNLESS_LATIN1_LOCALE();
    kelm_test::ScopedThreadLocale latin1(kelm_test::latin1_locale_name());
    ASSERT_TRUE(latin1.active()) << latin1.problem();
    Group group;
    group.record().group_name = dup_text("Gr\xFC"
                                         "n");
    group.record().actions[1] = new_action(1, "caf\xE9", "", "\xC0", 0, 0);
    kelm_asn_buffer_t out{0, nullptr};
    ASSERT_EQ(kelmAsnEncodeObjLCS(out, group.record()), 0u);
    const Bytes wire = bytes_of(out);
    const Bytes action = tlv(0x30, concat({{0x02, 0x01, 0x01},
                                           {0x0C, 0x05, 'c', 'a', 'f', 0xC3, 0xA9},
                                           {0x0C, 0x00},
                                           {0x0C, 0x02, 0xC3, 0x80},
                                           {0x02, 0x01, 0x00, 0x02, 0x01, 0x00},
                                           kEmptyAttrlist}));
    EXPECT_EQ(wire, with_header(tlv(0x30, concat({{0x0C, 0x05, 'G', 'r', 0xC3, 0xBC, 'n'},
                                                  tlv(0x30, concat({kFiller, action})),
                                                  kEmptyAttrlist}))));
    Group back;
    ASSERT_EQ(kelmAsnDecodeObjLCS(out, back.record()), 0u);
    EXPECT_STREQ(back.record().group_name, "Gr\xFCn");
    ASSERT_NE(back.record().actions[1], nullptr);
    EXPECT_STREQ(back.record().actions[1]->action_name, "caf\xE9");
    EXPECT_STREQ(back.record().actions[1]->action_text, "\xC0");
    Group plain;
    ASSERT_EQ(kelmAsnDecodeObj(out, plain.record()), 0u);
    EXPECT_STREQ(plain.record().actions[1]->action_name, "caf\xC3\xA9");
    kelm_asn_buffer_free(out);
}

// --- failures --------------------------------------------------------------------------------

TEST(ActionFailure, ASlotThatCannotBeAddedIsReportedAsTheModulesMemoryError) {
    Group group;
    group.record().group_name = dup_text("g");
    group.record().actions[3] = small_action();
    group.record().actions[9] = small_action();
    const std::string module_line =
        kelm_test::exception_line("ASN: Memory error", 0x10652065, "base_idls/actionidl_asn.cpp",
                                  kelm_ekaction_group_type.source_line);
    std::set<std::string> lines;
    kelm_asn_buffer_t out{0, nullptr};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            out = kelm_asn_buffer_t{0, nullptr};
            return kelmAsnEncodeObj(out, group.record());
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
                EXPECT_EQ(out.data, nullptr) << "a failed encode leaves the buffer untouched";
                lines.insert(err);
            } else {
                EXPECT_EQ(status, 0u);
                EXPECT_EQ(err, "");
            }
            kelm_asn_buffer_free(out);
        });
    EXPECT_GT(total, 10u);
    EXPECT_EQ(lines.count(module_line), 1u) << "expected among the lines: " << module_line;
}

TEST(ActionFailure, ASlotRecordThatCannotBeAllocatedIsReportedAndThePartialGroupFreesCleanly) {
    Group group;
    group.record().group_name = dup_text("g");
    group.record().actions[3] = small_action();
    group.record().actions[9] = small_action();
    const Bytes wire = encode(group.record());
    kelm_asn_buffer_t in{wire.size(), const_cast<unsigned char*>(wire.data())};
    const std::string module_line =
        kelm_test::exception_line("ASN: Memory error", 0x10652065, "base_idls/actionidl_asn.cpp",
                                  kelm_ekaction_group_type.source_line);
    std::set<std::string> lines;
    ekaction_group_s_t back{};
    const unsigned long total = kelm_test::each_allocation_failure(
        [&] {
            back = ekaction_group_s_t{};
            return kelmAsnDecodeObj(in, back);
        },
        [&](unsigned int status, const std::string& err, bool failed) {
            if (failed) {
                EXPECT_EQ(status, 0x10652065u);
                EXPECT_LE(std::count(err.begin(), err.end(), '\n'), 1) << err;
                lines.insert(err);
            } else {
                EXPECT_EQ(status, 0u);
                EXPECT_STREQ(back.group_name, "g");
                expect_small_action(back.actions[3]);
                expect_small_action(back.actions[9]);
            }
            kelmAsnFreeObj(back);
        });
    EXPECT_GT(total, 10u);
    EXPECT_EQ(lines.count(module_line), 1u) << "expected among the lines: " << module_line;
}

TEST(ActionFailure, EveryTruncationOfAGroupGivesAStatusAndFreesCleanly) {
    Groups set;
    set.record().groups[1] = static_cast<ekaction_group_s_t*>(std::calloc(1, 280));
    set.record().groups[1]->group_name = dup_text("g");
    set.record().groups[1]->actions[2] = small_action();
    const Bytes wire = encode(set.record());
    for (size_t n = 0; n < wire.size(); ++n) {
        SCOPED_TRACE(::testing::Message() << "cut to " << n << " bytes");
        Groups back;
        EXPECT_NE(decode(Bytes(wire.begin(), wire.begin() + n), back.record()), 0u);
    }
}
