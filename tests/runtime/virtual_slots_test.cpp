// The virtual operations sit in the vtable slots that existing callers and derived classes rely
// on, in the stated order.
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "asn_test_util.h"
#include "asn_utf8string.h"
#include "asnbase.h"
#include "asnutils.h"

using kelm_test::slot_of;

namespace {

struct Slot {
    const char* name;
    std::uintptr_t actual;
    std::uintptr_t expected;
};

void expect_slots(std::initializer_list<Slot> slots) {
    for (const Slot& slot : slots)
        EXPECT_EQ(slot.actual, slot.expected) << slot.name;
}

using O = kelm_asn_object;

} // namespace

TEST(VirtualSlots, TheObjectsOperationsAreInSlotsZeroToFortyOne) {
    expect_slots({
        {"decode_value", slot_of(&O::decode_value), 0},
        {"encode_value", slot_of(&O::encode_value), 1},
        {"check_valid", slot_of(&O::check_valid), 2},
        {"invalidate_encoding", slot_of(&O::invalidate_encoding), 3},
        {"invalidate_value", slot_of(&O::invalidate_value), 4},
        {"set_value_valid", slot_of(&O::set_value_valid), 5},
        {"check_type", slot_of(&O::check_type), 6},
        {"set_default_value", slot_of(&O::set_default_value), 7},
        {"get_encoding(buffer)",
         slot_of(static_cast<unsigned int (O::*)(kelm_buffer_t&) const>(&O::get_encoding)), 8},
        {"get_encoding()", slot_of(static_cast<unsigned int (O::*)() const>(&O::get_encoding)), 9},
        {"emptyi", slot_of(&O::emptyi), 10},
        {"get_child_count", slot_of(&O::get_child_count), 11},
        {"encoding_primitive_permitted", slot_of(&O::encoding_primitive_permitted), 12},
        {"encoding_constructed_permitted", slot_of(&O::encoding_constructed_permitted), 13},
        {"encoding_indefinite_permitted", slot_of(&O::encoding_indefinite_permitted), 14},
        {"is_constructed", slot_of(&O::is_constructed), 15},
        {"is_indefinite_length", slot_of(&O::is_indefinite_length), 16},
        {"is_polymorphic", slot_of(&O::is_polymorphic), 17},
        {"should_generate_constructed", slot_of(&O::should_generate_constructed), 18},
        {"set_class", slot_of(&O::set_class), 19},
        {"set_tag", slot_of(&O::set_tag), 20},
        {"display", slot_of(&O::display), 21},
        {"empty", slot_of(&O::empty), 22},
        {"normalize", slot_of(&O::normalize), 23},
        {"is_optional", slot_of(&O::is_optional), 24},
        {"is_defaultable", slot_of(&O::is_defaultable), 25},
        {"is_encoding_valid", slot_of(&O::is_encoding_valid), 26},
        {"get_default_value", slot_of(&O::get_default_value), 27},
        {"is_default_value", slot_of(&O::is_default_value), 28},
        {"is_valid", slot_of(&O::is_valid), 29},
        {"is_present", slot_of(&O::is_present), 30},
        // slots 31 and 32 are the two destructors
        {"set_secure", slot_of(&O::set_secure), 33},
        {"asnread", slot_of(&O::asnread), 34},
        {"asnwrite", slot_of(&O::asnwrite), 35},
        {"operator==", slot_of(&O::operator==), 36},
        {"set_optional", slot_of(&O::set_optional), 37},
        {"set_empty_permitted", slot_of(&O::set_empty_permitted), 38},
        {"check_encode_flags(int)",
         slot_of(static_cast<int (O::*)(int) const>(&O::check_encode_flags)), 39},
        {"check_encode_flags()", slot_of(static_cast<int (O::*)() const>(&O::check_encode_flags)),
         40},
        {"display_state_flags", slot_of(&O::display_state_flags), 41},
    });
}

TEST(VirtualSlots, ConstructedAndListTypesAddTheirSlotsAfterTheObjects) {
    using Composite = kelm_asn_composite;
    using Choice = kelm_asn_choice;
    using List = kelm_asn_sequenceof<kelm_asn_integer>;
    expect_slots({
        {"register_child", slot_of(&Composite::register_child), 42},
        {"register_child_before", slot_of(&Composite::register_child_before), 43},
        {"get_empty_permitted", slot_of(&Composite::get_empty_permitted), 44},
        {"set_tag_unchecked", slot_of(&Choice::set_tag_unchecked), 45},
        {"delete_child", slot_of(&List::delete_child), 45},
        {"add_child", slot_of(&List::add_child), 46},
        {"add_child_before", slot_of(&List::add_child_before), 47},
        {"a list's decode_value stays in slot 0", slot_of(&List::decode_value), 0},
    });
}

TEST(VirtualSlots, TheAdaptersAddTheirDefaultAfterTheirBasesLastSlot) {
    expect_slots({
        {"kelmasn_integer::set_default_value()",
         slot_of(static_cast<int (kelmasn_integer::*)()>(&kelmasn_integer::set_default_value)), 42},
        {"kelmasn_octetstring::set_default_value()",
         slot_of(
             static_cast<int (kelmasn_octetstring::*)()>(&kelmasn_octetstring::set_default_value)),
         42},
    });
}
