// A C program that uses the library through kelmasn_c.h alone. It encodes a record of every
// record family by its record type identifier, decodes the bytes into a zeroed record, compares
// the two field by field and releases what the decode allocated; it checks the bytes of a value
// and of a bare INTEGER against their DER encodings, the type-code entry points, the header
// query, the buffer utilities, the DER inspection functions, the list of record types, and the
// statuses of an unknown record type, an unknown type code and truncated buffers.
//
// Usage: c_callers_test            the checks above, in the process's "C" locale
//        c_callers_test lcs NAME   the local-code-set variants in the ISO-8859-1 locale NAME
// Exit status 0 when every check passes, 1 otherwise, 77 when the locale NAME cannot be loaded.
#include <locale.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kelm/kelmasn_c.h>

static int failures;
static const char* current_family = "";

static void fail(int line, const char* what) {
    fprintf(stderr, "c_callers_test.c:%d: [%s] %s\n", line, current_family, what);
    ++failures;
}

#define CHECK(condition)                                                                           \
    do {                                                                                           \
        if (!(condition))                                                                          \
            fail(__LINE__, "failed: " #condition);                                                 \
    } while (0)

#define CHECK_STATUS(expected, actual)                                                             \
    do {                                                                                           \
        const unsigned int actual_status = (actual);                                               \
        if (actual_status != (unsigned int)(expected)) {                                           \
            char message[160];                                                                     \
            snprintf(message, sizeof message, "status %#x, expected %#x: %s", actual_status,       \
                     (unsigned int)(expected), #actual);                                           \
            fail(__LINE__, message);                                                               \
        }                                                                                          \
    } while (0)

// Two texts are equal when both are null or both hold the same characters.
static int same_text(const char* a, const char* b) {
    return (a == NULL || b == NULL) ? a == b : strcmp(a, b) == 0;
}

static int same_bytes(const unsigned char* a, uint32_t a_length, const unsigned char* b,
                      uint32_t b_length) {
    return a_length == b_length && (a_length == 0 || memcmp(a, b, a_length) == 0);
}

static int same_texts(char** a, char** b, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i)
        if (!same_text(a[i], b[i]))
            return 0;
    return 1;
}

// --- Round trip: encode, check the header, decode into a zeroed record ------------------------

static const unsigned char kHeader[] = {0x04, 0x02, 0xAC, 0xDC};

// Encodes `record` as `type` and decodes the bytes into `decoded`, which the caller zeroed.
// Returns 1 when both succeeded; the caller then compares and releases `decoded`.
static int round_trip(kelm_record_type_id type, void* record, void* decoded) {
    kelm_asn_buffer_t buffer = {0, NULL};
    const unsigned int encoded = kelmasn_c_encode(type, &buffer, record);
    CHECK_STATUS(0, encoded);
    if (encoded != 0)
        return 0;
    CHECK(buffer.data != NULL && buffer.length > sizeof kHeader);
    CHECK(buffer.data != NULL && memcmp(buffer.data, kHeader, sizeof kHeader) == 0);
    const unsigned int status = kelmasn_c_decode(type, &buffer, decoded);
    CHECK_STATUS(0, status);
    kelmasn_c_buffer_free(&buffer);
    return status == 0;
}

// --- Attributes and values ------------------------------------------------------------------

static int same_uuid(const uuid_t* a, const uuid_t* b) {
    return a->time_low == b->time_low && a->time_mid == b->time_mid &&
           a->time_hi_and_version == b->time_hi_and_version &&
           a->clock_seq_hi_and_reserved == b->clock_seq_hi_and_reserved &&
           a->clock_seq_low == b->clock_seq_low && memcmp(a->node, b->node, 6) == 0;
}

static int same_value(const value_s_t* a, const value_s_t* b) {
    return a->value_type == b->value_type && same_text(a->str_value, b->str_value) &&
           same_bytes(a->bin_value, a->bin_length, b->bin_value, b->bin_length);
}

static int same_attr(const attr_s_t* a, const attr_s_t* b) {
    if (!same_text(a->name, b->name) || a->value_count != b->value_count)
        return 0;
    for (uint32_t i = 0; i < a->value_count; ++i)
        if (!same_value(&a->values[i], &b->values[i]))
            return 0;
    return 1;
}

static int same_attrlist(const attrlist_s_t* a, const attrlist_s_t* b) {
    if (a->attr_count != b->attr_count)
        return 0;
    for (uint32_t i = 0; i < a->attr_count; ++i)
        if (!same_attr(&a->attrs[i], &b->attrs[i]))
            return 0;
    return 1;
}

static unsigned char kBinary[] = {0x00, 0x01, 0xFE, 0xFF};
static value_s_t kValues[] = {
    {1, "admins", 0, NULL},
    {2, "raw", sizeof kBinary, kBinary},
};
static attr_s_t kAttrs[] = {
    {"groups", 2, kValues},
    {"empty", 0, NULL},
};
static const attrlist_s_t kAttrlist = {2, kAttrs};

static void attributes_round_trip(void) {
    current_family = "attributes and values";
    attrlist_s_t list = kAttrlist;
    attrlist_s_t decoded = {0};
    if (round_trip(KELM_RECORD_attrlist_s_t, &list, &decoded))
        CHECK(same_attrlist(&list, &decoded));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_attrlist_s_t, &decoded));

    uuid_t uuid = {0x01234567u, 0x89AB, 0xCDEF, 0x80, 0x7F, {1, 2, 3, 4, 5, 0xFF}};
    uuid_t uuid_decoded = {0};
    if (round_trip(KELM_RECORD_uuid_t, &uuid, &uuid_decoded))
        CHECK(same_uuid(&uuid, &uuid_decoded));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_uuid_t, &uuid_decoded));
}

// A value's encoding, from X.690 and the value's structure SEQUENCE { INTEGER, UTF8String, OCTET
// STRING }: the header, then 30 0D, 02 01 01, 0C 06 "admins", 04 00.
static const unsigned char kValueEncoding[] = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0D, 0x02,
                                               0x01, 0x01, 0x0C, 0x06, 'a',  'd',  'm',
                                               'i',  'n',  's',  0x04, 0x00};

static void value_encoding_and_truncation(void) {
    current_family = "value bytes";
    value_s_t value = {1, "admins", 0, NULL};
    kelm_asn_buffer_t buffer = {0, NULL};
    CHECK_STATUS(0, kelmasn_c_encode(KELM_RECORD_value_s_t, &buffer, &value));
    CHECK(same_bytes(buffer.data, (uint32_t)buffer.length, kValueEncoding, sizeof kValueEncoding));

    // Cut inside the SEQUENCE: its length says 13 octets, fewer remain.
    kelm_asn_buffer_t cut = {10, buffer.data};
    value_s_t untouched = {7, NULL, 0, NULL};
    CHECK_STATUS(0x10652198, kelmasn_c_decode(KELM_RECORD_value_s_t, &cut, &untouched));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_value_s_t, &untouched));

    // The header alone: a buffer of exactly 4 bytes is refused as having no valid header, and
    // the record stays as it was.
    kelm_asn_buffer_t header_only = {4, buffer.data};
    value_s_t kept = {7, NULL, 0, NULL};
    CHECK_STATUS(KELMASN_C_BAD_HEADER,
                 kelmasn_c_decode(KELM_RECORD_value_s_t, &header_only, &kept));
    CHECK(kept.value_type == 7 && kept.str_value == NULL && kept.bin_value == NULL);
    kelmasn_c_buffer_free(&buffer);
}

// --- Objects and the database header --------------------------------------------------------

static int same_ekobj(const ekobj_t* a, const ekobj_t* b) {
    return same_text(a->name, b->name) && a->first_number == b->first_number &&
           a->second_number == b->second_number &&
           same_bytes(a->data, a->data_length, b->data, b->data_length);
}

static void objects_round_trip(void) {
    current_family = "objects";
    static ekobj_t objs[] = {
        {"printer", 1, 0xFFFFFFFFu, sizeof kBinary, kBinary},
        {"scanner", 0x7FFFFFFF, 2, 0, NULL},
    };
    ekobj_list_s_t list = {2, objs, kAttrlist};
    ekobj_list_s_t decoded = {0};
    if (round_trip(KELM_RECORD_ekobj_list_s_t, &list, &decoded)) {
        CHECK(decoded.obj_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.obj_count == 2; ++i)
            CHECK(same_ekobj(&list.objs[i], &decoded.objs[i]));
        CHECK(same_attrlist(&list.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ekobj_list_s_t, &decoded));

    ip_addr_s_t address = {6, "2001:db8::1", {0x20, 0x01, 0x0D, 0xB8, [15] = 1}};
    ip_addr_s_t address_decoded = {0};
    if (round_trip(KELM_RECORD_ip_addr_s_t, &address, &address_decoded))
        CHECK(address_decoded.addr_type == 6 &&
              memcmp(address.addr_string, address_decoded.addr_string, 46) == 0 &&
              memcmp(address.addr_bytes, address_decoded.addr_bytes, 16) == 0);
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ip_addr_s_t, &address_decoded));
}

// --- Server registrations -------------------------------------------------------------------

static int same_svc(const aznadmsvc_s_t* a, const aznadmsvc_s_t* b) {
    return same_text(a->svc_name, b->svc_name) && a->svc_item_count == b->svc_item_count &&
           same_texts(a->svc_items, b->svc_items, a->svc_item_count);
}

static char* kSvcItems[] = {"start", "stop", "status"};

static void server_registrations_round_trip(void) {
    current_family = "server registrations";
    static aznadmsvc_s_t svcs[] = {{"admin", 3, kSvcItems}, {"audit", 1, kSvcItems}};
    aznlocal_svr_s_t server = {"host",      "domain", "path", "label", 1,        0x80000000u,
                               0xFFFFFFFFu, 42,       2,      svcs,    kAttrlist};
    aznlocal_svr_s_t decoded = {0};
    if (round_trip(KELM_RECORD_aznlocal_svr_s_t, &server, &decoded)) {
        CHECK(same_text(server.svr_text1, decoded.svr_text1) &&
              same_text(server.svr_text2, decoded.svr_text2) &&
              same_text(server.svr_text3, decoded.svr_text3) &&
              same_text(server.svr_text4, decoded.svr_text4));
        CHECK(decoded.svr_number1 == 1 && decoded.svr_number2 == 0x80000000u &&
              decoded.svr_number3 == 0xFFFFFFFFu && decoded.svr_number4 == 42);
        CHECK(decoded.svc_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.svc_count == 2; ++i)
            CHECK(same_svc(&server.svcs[i], &decoded.svcs[i]));
        CHECK(same_attrlist(&server.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_aznlocal_svr_s_t, &decoded));
}

// --- Protected objects ----------------------------------------------------------------------

static void protected_objects_round_trip(void) {
    current_family = "protected objects";
    azn_internal_pobj_s_t pobj = {{2, 0xFFFFFFFEu, "/printers/floor-2", kAttrlist}, "internal"};
    azn_internal_pobj_s_t decoded = {0};
    if (round_trip(KELM_RECORD_azn_internal_pobj_s_t, &pobj, &decoded)) {
        CHECK(decoded.pobj.first_number == 2 && decoded.pobj.second_number == 0xFFFFFFFEu);
        CHECK(same_text(pobj.pobj.name, decoded.pobj.name));
        CHECK(same_attrlist(&pobj.pobj.attrs, &decoded.pobj.attrs));
        CHECK(same_text(pobj.internal_name, decoded.internal_name));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_azn_internal_pobj_s_t, &decoded));
}

// --- Principals -----------------------------------------------------------------------------

static int same_sec_id(const sec_id_t* a, const sec_id_t* b) {
    return same_uuid(&a->uuid, &b->uuid) && same_text(a->name, b->name);
}

static int same_pa(const sec_id_pa_t* a, const sec_id_pa_t* b) {
    if (a == NULL || b == NULL)
        return a == b;
    if (!same_sec_id(&a->id, &b->id) || a->group_count != b->group_count)
        return 0;
    for (uint16_t i = 0; i < a->group_count; ++i)
        if (!same_sec_id(&a->groups[i], &b->groups[i]))
            return 0;
    return 1;
}

static int same_principal(const ekprincipal_s_t* a, const ekprincipal_s_t* b) {
    if (a->first_number != b->first_number || a->second_number != b->second_number ||
        !same_pa(a->pa, b->pa))
        return 0;
    if (a->attrs == NULL || b->attrs == NULL)
        return a->attrs == b->attrs;
    return same_attrlist(a->attrs, b->attrs);
}

static int same_chain(const ekprincipal_chain_s_t* a, const ekprincipal_chain_s_t* b) {
    if (!same_text(a->chain_name, b->chain_name) || a->principal_count != b->principal_count)
        return 0;
    for (uint32_t i = 0; i < a->principal_count; ++i)
        if (!same_principal(a->principals[i], b->principals[i]))
            return 0;
    return 1;
}

static sec_id_t kGroups[] = {
    {{1, 2, 3, 4, 5, {6, 7, 8, 9, 10, 11}}, "staff"},
    {{0xFFFFFFFFu, 0xFFFF, 0, 0xFF, 0, {0}}, "operators"},
};
static sec_id_pa_t kPa = {
    {{0xA1B2C3D4u, 1, 2, 3, 4, {0xDE, 0xAD, 0xBE, 0xEF, 0, 1}}, "alice"}, 2, kGroups};
static attrlist_s_t kPrincipalAttrs = {2, kAttrs};
static ekprincipal_s_t kPrincipalFull = {1, &kPa, 2, &kPrincipalAttrs};
static ekprincipal_s_t kPrincipalBare = {3, NULL, 4, NULL};
static ekprincipal_s_t* kPrincipals[] = {&kPrincipalFull, &kPrincipalBare};
static const ekprincipal_chain_s_t kChain = {"callers", 2, kPrincipals};

static void principals_round_trip(void) {
    current_family = "principals";
    ekprincipal_chain_s_t chain = kChain;
    ekprincipal_chain_s_t decoded = {0};
    if (round_trip(KELM_RECORD_ekprincipal_chain_s_t, &chain, &decoded))
        CHECK(same_chain(&chain, &decoded));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ekprincipal_chain_s_t, &decoded));
}

// --- Authorization server messages ----------------------------------------------------------

static void server_messages_round_trip(void) {
    current_family = "authorization server messages";
    aznadmin_getobject_in_s_t request = {kChain, "task", "object", "detail", kAttrlist};
    aznadmin_getobject_in_s_t decoded = {0};
    if (round_trip(KELM_RECORD_aznadmin_getobject_in_s_t, &request, &decoded)) {
        CHECK(same_chain(&request.chain, &decoded.chain));
        CHECK(same_text(request.admin_string1, decoded.admin_string1) &&
              same_text(request.admin_string2, decoded.admin_string2) &&
              same_text(request.admin_string3, decoded.admin_string3));
        CHECK(same_attrlist(&request.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_aznadmin_getobject_in_s_t, &decoded));
}

// --- ACLs -----------------------------------------------------------------------------------

static void acls_round_trip(void) {
    current_family = "ACLs";
    static uint32_t perms[] = {0, 1, 0x80000000u, 0xFFFFFFFFu};
    static acl_entry_s_t entries[] = {
        {{4, perms}, 1, {{1, 2, 3, 4, 5, {6, 7, 8, 9, 10, 11}}, "alice"}},
        {{1, perms}, 0xFFFFFFFFu, {{9, 8, 7, 6, 5, {4, 3, 2, 1, 0, 0xFF}}, "any-other"}},
    };
    acl_ext_s_t acl = {"default-root", 2, entries, kAttrlist};
    acl_ext_s_t decoded = {0};
    if (round_trip(KELM_RECORD_acl_ext_s_t, &acl, &decoded)) {
        CHECK(same_text(acl.name, decoded.name));
        CHECK(decoded.entry_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.entry_count == 2; ++i) {
            const acl_entry_s_t* a = &acl.entries[i];
            const acl_entry_s_t* b = &decoded.entries[i];
            CHECK(a->permset.perm_count == b->permset.perm_count &&
                  memcmp(a->permset.perms, b->permset.perms,
                         a->permset.perm_count * sizeof a->permset.perms[0]) == 0);
            CHECK(a->entry_type == b->entry_type);
            CHECK(same_sec_id(&a->id, &b->id));
        }
        CHECK(same_attrlist(&acl.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_acl_ext_s_t, &decoded));
}

// --- Actions and action groups --------------------------------------------------------------

static int same_action(const ekaction_s_t* a, const ekaction_s_t* b) {
    if (a == NULL || b == NULL)
        return a == b;
    return a->action_number == b->action_number && same_text(a->action_name, b->action_name) &&
           same_text(a->action_label, b->action_label) &&
           same_text(a->action_text, b->action_text) && a->first_number == b->first_number &&
           a->second_number == b->second_number && same_attrlist(&a->attrs, &b->attrs);
}

static void actions_round_trip(void) {
    current_family = "actions";
    static ekaction_s_t read_action = {1, "r", "read", "read the object", 0, 1, {0, NULL}};
    static ekaction_s_t write_action = {2, "w", "write", "change it", 0xFFFFFFFFu, 7, {2, kAttrs}};
    // Slots keep their positions: the empty ones between the actions stay empty.
    ekaction_group_s_t group = {
        "primary", {[0] = &read_action, [5] = &write_action, [31] = &read_action}, kAttrlist};
    ekaction_group_s_t decoded = {0};
    if (round_trip(KELM_RECORD_ekaction_group_s_t, &group, &decoded)) {
        CHECK(same_text(group.group_name, decoded.group_name));
        for (unsigned int slot = 0; slot < KELM_ACTION_SLOT_COUNT; ++slot)
            if (!same_action(group.actions[slot], decoded.actions[slot])) {
                char message[64];
                snprintf(message, sizeof message, "action slot %u differs", slot);
                fail(__LINE__, message);
            }
        CHECK(same_attrlist(&group.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ekaction_group_s_t, &decoded));
}

// --- Protected-object policies --------------------------------------------------------------

static void policies_round_trip(void) {
    current_family = "protected-object policies";
    static ekpop_ipauth_s_t ipauths[] = {{1, 2, 3}, {0xFFFFFFFFu, 0, 0x80000000u}};
    ekpop_s_t pop = {"weekdays", {5, {-480, 1020, 0xFFFFFFF0u}}, 1, 2, 3, 2, ipauths, kAttrlist};
    ekpop_s_t decoded = {0};
    if (round_trip(KELM_RECORD_ekpop_s_t, &pop, &decoded)) {
        CHECK(same_text(pop.pop_name, decoded.pop_name));
        CHECK(decoded.access_times.access_value == 5 &&
              decoded.access_times.tod.range_start == -480 &&
              decoded.access_times.tod.range_end == 1020 &&
              decoded.access_times.tod.range_qualifier == 0xFFFFFFF0u);
        CHECK(decoded.first_number == 1 && decoded.second_number == 2 && decoded.third_number == 3);
        CHECK(decoded.ipauth_count == 2 &&
              memcmp(pop.ipauths, decoded.ipauths, sizeof ipauths) == 0);
        CHECK(same_attrlist(&pop.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ekpop_s_t, &decoded));
}

// --- Authorization database records and credential changes ----------------------------------

static void database_records_round_trip(void) {
    current_family = "authorization database records";
    static char* values[] = {"one", "two"};
    static ekattr_s_t ekattrs[] = {{"colours", 2, values}, {"shapes", 1, values}};
    ekextattr_s_t extattr = {2, ekattrs, kAttrlist};
    ekextattr_s_t decoded = {0};
    if (round_trip(KELM_RECORD_ekextattr_s_t, &extattr, &decoded)) {
        CHECK(decoded.ekattr_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.ekattr_count == 2; ++i)
            CHECK(same_text(ekattrs[i].name, decoded.ekattrs[i].name) &&
                  ekattrs[i].value_count == decoded.ekattrs[i].value_count &&
                  same_texts(ekattrs[i].values, decoded.ekattrs[i].values, ekattrs[i].value_count));
        CHECK(same_attrlist(&extattr.attrs, &decoded.attrs));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_ekextattr_s_t, &decoded));
}

// --- Name/value lists -----------------------------------------------------------------------

static int same_namevalue(const namevalue_s_t* a, const namevalue_s_t* b) {
    if (!same_text(a->name, b->name) || a->value_count != b->value_count ||
        !same_texts(a->values, b->values, a->value_count) || a->nested_count != b->nested_count)
        return 0;
    for (uint32_t i = 0; i < a->nested_count; ++i)
        if (!same_namevalue(a->nested[i], b->nested[i]))
            return 0;
    return 1;
}

static void namevalue_round_trip(void) {
    current_family = "name/value lists";
    static char* values[] = {"a", "b", "c"};
    static namevalue_s_t leaf = {"leaf", 3, values, 0, NULL};
    static namevalue_s_t* leaves[] = {&leaf, &leaf};
    static namevalue_s_t inner = {"inner", 1, values, 2, leaves};
    static namevalue_s_t* inners[] = {&inner};
    static namevalue_s_t top = {"top", 0, NULL, 1, inners};
    static namevalue_s_t* entries[] = {&top, &leaf};
    namevalueList_s_t list = {2, entries};
    namevalueList_s_t decoded = {0};
    if (round_trip(KELM_RECORD_namevalueList_s_t, &list, &decoded)) {
        CHECK(decoded.entry_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.entry_count == 2; ++i)
            CHECK(same_namevalue(list.entries[i], decoded.entries[i]));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_namevalueList_s_t, &decoded));
}

// --- Audit events ---------------------------------------------------------------------------

static int same_audit_element(const zuauditelement_s_t* a, const zuauditelement_s_t* b) {
    if (!same_text(a->name, b->name) ||
        !same_bytes(a->value, a->value_length, b->value, b->value_length) ||
        a->attr_count != b->attr_count || a->element_count != b->element_count)
        return 0;
    for (uint32_t i = 0; i < a->attr_count; ++i)
        if (!same_text(a->attrs[i].name, b->attrs[i].name) ||
            !same_bytes(a->attrs[i].value, a->attrs[i].value_length, b->attrs[i].value,
                        b->attrs[i].value_length))
            return 0;
    for (uint32_t i = 0; i < a->element_count; ++i)
        if (!same_audit_element(&a->elements[i], &b->elements[i]))
            return 0;
    return 1;
}

static void audit_round_trip(void) {
    current_family = "audit events";
    static zuauditattribute_s_t attributes[] = {{"outcome", 4, kBinary}, {"empty", 0, NULL}};
    static zuauditelement_s_t nested[] = {{"nested", 2, kBinary, 1, attributes, 0, NULL}};
    static zuauditelement_s_t elements[] = {
        {"first", 4, kBinary, 2, attributes, 1, nested},
        {"second", 0, NULL, 0, NULL, 0, NULL},
    };
    zuauditevent_s_t event = {0xFFFFFFFFu, "login", 0x80000000u, 2, elements};
    zuauditevent_s_t decoded = {0};
    if (round_trip(KELM_RECORD_zuauditevent_s_t, &event, &decoded)) {
        CHECK(decoded.event_number1 == 0xFFFFFFFFu && decoded.event_number2 == 0x80000000u);
        CHECK(same_text(event.event_text, decoded.event_text));
        CHECK(decoded.element_count == 2);
        for (uint32_t i = 0; i < 2 && decoded.element_count == 2; ++i)
            CHECK(same_audit_element(&event.elements[i], &decoded.elements[i]));
    }
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_zuauditevent_s_t, &decoded));
}

// --- Certificate requests and object updates, by type code -----------------------------------

static void type_code_round_trips(void) {
    current_family = "type codes";
    static unsigned char body[] = {0x30, 0x03, 0x02, 0x01, 0x05};
    cert_request_in request = {"subject", "issuer", sizeof body, body};
    kelm_asn_buffer_t buffer = {0, NULL};
    CHECK_STATUS(0, kelmasn_c_encode_obj(2, &request, KELMASN_TYPE_CERT_REQUEST, &buffer));
    cert_request_in decoded = {0};
    CHECK_STATUS(0, kelmasn_c_decode_obj(2, &buffer, KELMASN_TYPE_CERT_REQUEST, &decoded));
    CHECK(same_text(request.string1, decoded.string1) &&
          same_text(request.string2, decoded.string2) &&
          same_bytes(request.body, request.body_length, decoded.body, decoded.body_length));
    CHECK_STATUS(0, kelmasn_c_obj_free(2, KELMASN_TYPE_CERT_REQUEST, &decoded));
    kelmasn_c_buffer_free(&buffer);

    static ekobj_update_s_t updates[] = {{1, "added", -1}, {-2147483647 - 1, "removed", 7}};
    ekobj_update_list_s_t list = {2, updates};
    kelm_asn_buffer_t list_buffer = {0, NULL};
    CHECK_STATUS(0, kelmasn_c_encode_obj(2, &list, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_buffer));
    ekobj_update_list_s_t list_decoded = {0};
    CHECK_STATUS(
        0, kelmasn_c_decode_obj(2, &list_buffer, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_decoded));
    CHECK(list_decoded.count == 2);
    for (uint32_t i = 0; i < 2 && list_decoded.count == 2; ++i)
        CHECK(updates[i].number1 == list_decoded.updates[i].number1 &&
              same_text(updates[i].text, list_decoded.updates[i].text) &&
              updates[i].number2 == list_decoded.updates[i].number2);
    CHECK_STATUS(0, kelmasn_c_obj_free(2, KELMASN_TYPE_EKOBJ_UPDATE_LIST, &list_decoded));
    kelmasn_c_buffer_free(&list_buffer);

    // An int of 1 with version 3 is the header 04 03 AC DC and the INTEGER 02 01 01.
    int one = 1;
    kelm_asn_buffer_t integer = {0, NULL};
    CHECK_STATUS(0, kelmasn_c_encode_obj(3, &one, KELMASN_TYPE_INTEGER, &integer));
    static const unsigned char kInteger[] = {0x04, 0x03, 0xAC, 0xDC, 0x02, 0x01, 0x01};
    CHECK(same_bytes(integer.data, (uint32_t)integer.length, kInteger, sizeof kInteger));
    int read_back = 0;
    CHECK_STATUS(0, kelmasn_c_decode_obj(3, &integer, KELMASN_TYPE_INTEGER, &read_back));
    CHECK(read_back == 1);
    CHECK_STATUS(0, kelmasn_c_obj_free(3, KELMASN_TYPE_INTEGER, &read_back));
    // The typed entry points ask for version 2: a buffer of version 3 has no valid header.
    dbr_get_db_in_s_t typed = {0};
    CHECK_STATUS(KELMASN_C_BAD_HEADER,
                 kelmasn_c_decode(KELM_RECORD_dbr_get_db_in_s_t, &integer, &typed));
    kelmasn_c_buffer_free(&integer);

    // Type code 0x105 is unknown to all three, and nothing is touched.
    kelm_asn_buffer_t untouched = {0, NULL};
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_encode_obj(2, &one, 0x105, &untouched));
    CHECK(untouched.length == 0 && untouched.data == NULL);
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_decode_obj(2, &untouched, 0x105, &one));
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_obj_free(2, 0x105, &one));
    CHECK(one == 1);
}

// --- The record types, unknown identifiers --------------------------------------------------

static void record_types(void) {
    current_family = "record types";
    CHECK(kelmasn_c_record_type_count() == KELM_RECORD_TYPE_COUNT);
    CHECK(KELM_RECORD_TYPE_COUNT == 65);
    CHECK(KELM_RECORD_uuid_t == 0 && KELM_RECORD_zuauditattribute_s_t == 64);
    CHECK(same_text(kelmasn_c_record_type_name(KELM_RECORD_attrlist_s_t), "attrlist_s_t"));
    CHECK(same_text(kelmasn_c_record_type_name(KELM_RECORD_remote_log_request),
                    "remote_log_request"));
    for (unsigned int id = 0; id < kelmasn_c_record_type_count(); ++id) {
        const char* name = kelmasn_c_record_type_name((kelm_record_type_id)id);
        kelm_record_type_id found = KELM_RECORD_TYPE_COUNT;
        CHECK(name != NULL);
        CHECK_STATUS(0, kelmasn_c_record_type_named(name, &found));
        CHECK(found == id);
    }
    kelm_record_type_id found = KELM_RECORD_TYPE_COUNT;
    CHECK_STATUS(0, kelmasn_c_record_type_named("asn_attr_t", &found));
    CHECK(found == KELM_RECORD_attr_s_t);
    CHECK_STATUS(0, kelmasn_c_record_type_named("attr", &found));
    CHECK(found == KELM_RECORD_attr_s_t);
    found = KELM_RECORD_TYPE_COUNT;
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_record_type_named("no_such_record", &found));
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_record_type_named(NULL, &found));
    CHECK(found == KELM_RECORD_TYPE_COUNT);

    // An identifier past the list: every entry point says so and touches nothing.
    const kelm_record_type_id unknown = (kelm_record_type_id)KELM_RECORD_TYPE_COUNT;
    const kelm_record_type_id far = (kelm_record_type_id)0xFFFFFFFFu;
    attrlist_s_t list = kAttrlist;
    kelm_asn_buffer_t buffer = {0, NULL};
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_encode(unknown, &buffer, &list));
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_encode_lcs(far, &buffer, &list));
    CHECK(buffer.length == 0 && buffer.data == NULL);
    kelm_asn_buffer_t input = {sizeof kValueEncoding, (unsigned char*)kValueEncoding};
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_decode(unknown, &input, &list));
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_decode_lcs(far, &input, &list));
    CHECK_STATUS(KELMASN_C_UNKNOWN_TYPE, kelmasn_c_free(far, &list));
    CHECK(list.attr_count == kAttrlist.attr_count && list.attrs == kAttrlist.attrs);
    CHECK(kelmasn_c_record_type_name(unknown) == NULL);
}

// --- The header query and the buffer utilities ----------------------------------------------

static void header_and_buffers(void) {
    current_family = "header and buffers";
    unsigned char version2[] = {0x04, 0x02, 0xAC, 0xDC, 0x05};
    kelm_asn_buffer_t buffer = {sizeof version2, version2};
    unsigned int flag = 7;
    CHECK_STATUS(0, kelmasn_c_version(&buffer, &flag));
    CHECK(flag == 0);
    unsigned char version0[] = {0x04, 0x00, 0xAC, 0xDC, 0x05};
    kelm_asn_buffer_t zero = {sizeof version0, version0};
    flag = 7;
    CHECK_STATUS(KELMASN_C_BAD_HEADER, kelmasn_c_version(&zero, &flag));
    CHECK(flag == 1);
    kelm_asn_buffer_t four = {4, version2};
    flag = 7;
    CHECK_STATUS(KELMASN_C_BAD_HEADER, kelmasn_c_version(&four, &flag));
    CHECK(flag == 1);

    kelm_asn_buffer_t copy = {99, version0};
    unsigned int status = 99;
    kelmasn_c_buffer_copy(&buffer, &copy, &status);
    CHECK_STATUS(0, status);
    CHECK(copy.data != version2 &&
          same_bytes(copy.data, (uint32_t)copy.length, version2, sizeof version2));
    kelmasn_c_buffer_free(&copy);
    kelm_asn_buffer_t empty = {0, NULL};
    kelm_asn_buffer_t empty_copy = {99, version0};
    status = 99;
    kelmasn_c_buffer_copy(&empty, &empty_copy, &status);
    CHECK_STATUS(0, status);
    CHECK(empty_copy.length == 0 && empty_copy.data == NULL);

    CHECK(same_text(kelmasn_c_library_version(), KELMASN_VERSION_STRING));
    CHECK(kelmasn_c_status_text(KELMASN_C_BAD_HEADER) != NULL);
}

// --- DER inspection -------------------------------------------------------------------------

static void der_inspection(void) {
    current_family = "DER inspection";
    // SEQUENCE { INTEGER -2, UTF8String "ok", OBJECT IDENTIFIER 2.5.4.3 }, X.690 8.2, 8.19.
    unsigned char der[] = {0x30, 0x0C, 0x02, 0x01, 0xFE, 0x0C, 0x02,
                           'o',  'k',  0x06, 0x03, 0x55, 0x04, 0x03};
    unsigned char* cursors[2] = {der, NULL};
    unsigned int remaining = sizeof der;
    unsigned int tag = 0, constructed = 0, tag_class = 9, definite = 0, length = 0;
    CHECK_STATUS(0, kelmasn_c_get_type(cursors, &remaining, &tag, &constructed, &tag_class));
    CHECK(tag == 16 && constructed == 1 && tag_class == 0 && remaining == 13);
    CHECK_STATUS(0, kelmasn_c_get_length(cursors, &remaining, &definite, &length));
    CHECK(definite == 1 && length == 12 && remaining == 12 && cursors[0] == der + 2);

    CHECK_STATUS(0, kelmasn_c_get_type(cursors, &remaining, &tag, &constructed, &tag_class));
    CHECK_STATUS(0, kelmasn_c_get_length(cursors, &remaining, &definite, &length));
    CHECK(tag == 2 && constructed == 0 && length == 1);
    int64_t value = 0;
    CHECK_STATUS(0, kelmasn_c_get_integer_value(cursors, &remaining, length, &value));
    CHECK(value == -2);

    CHECK_STATUS(0, kelmasn_c_get_type(cursors, &remaining, &tag, &constructed, &tag_class));
    CHECK_STATUS(0, kelmasn_c_get_length(cursors, &remaining, &definite, &length));
    CHECK(tag == 12 && length == 2);
    char* text = NULL;
    CHECK_STATUS(0, kelmasn_c_get_charstring_value(cursors, &remaining, length, &text));
    CHECK(same_text(text, "ok"));
    free(text);

    CHECK_STATUS(0, kelmasn_c_get_type(cursors, &remaining, &tag, &constructed, &tag_class));
    CHECK_STATUS(0, kelmasn_c_get_length(cursors, &remaining, &definite, &length));
    CHECK(tag == 6 && length == 3);
    unsigned int count = 0;
    unsigned char* bytes = NULL;
    CHECK_STATUS(0, kelmasn_c_get_oid_value(cursors, &remaining, length, &count, &bytes));
    CHECK(same_bytes(bytes, count, der + 11, 3) && remaining == 0);
    free(bytes);

    // Nothing left: the identifier cannot be read, and the cursor stays.
    unsigned char* end = cursors[0];
    CHECK_STATUS(0x10652198,
                 kelmasn_c_get_type(cursors, &remaining, &tag, &constructed, &tag_class));
    CHECK(cursors[0] == end && remaining == 0);
    // A null output record of the OID function is refused before the input is looked at.
    CHECK_STATUS(0x1065219C, kelmasn_c_get_oid_value(cursors, &remaining, 3, NULL, NULL));
}

// --- The local-code-set variants -------------------------------------------------------------

// In an ISO-8859-1 locale, "café" is 63 61 66 E9 in the record and UTF-8 63 61 66 C3 A9 on the
// wire.
static int local_code_set(const char* locale) {
    current_family = "local code set";
    if (setlocale(LC_ALL, locale) == NULL) {
        fprintf(stderr, "the locale %s cannot be loaded\n", locale);
        return 77;
    }
    value_s_t value = {1, "caf\xE9", 0, NULL};
    kelm_asn_buffer_t buffer = {0, NULL};
    CHECK_STATUS(0, kelmasn_c_encode_lcs(KELM_RECORD_value_s_t, &buffer, &value));
    static const unsigned char kWire[] = {0x04, 0x02, 0xAC, 0xDC, 0x30, 0x0C, 0x02, 0x01, 0x01,
                                          0x0C, 0x05, 0x63, 0x61, 0x66, 0xC3, 0xA9, 0x04, 0x00};
    CHECK(same_bytes(buffer.data, (uint32_t)buffer.length, kWire, sizeof kWire));

    value_s_t local = {0};
    CHECK_STATUS(0, kelmasn_c_decode_lcs(KELM_RECORD_value_s_t, &buffer, &local));
    CHECK(same_text(local.str_value, "caf\xE9"));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_value_s_t, &local));

    value_s_t plain = {0};
    CHECK_STATUS(0, kelmasn_c_decode(KELM_RECORD_value_s_t, &buffer, &plain));
    CHECK(same_text(plain.str_value, "caf\xC3\xA9"));
    CHECK_STATUS(0, kelmasn_c_free(KELM_RECORD_value_s_t, &plain));
    kelmasn_c_buffer_free(&buffer);
    return failures == 0 ? 0 : 1;
}

int main(int argc, char** argv) {
    if (argc == 3 && strcmp(argv[1], "lcs") == 0)
        return local_code_set(argv[2]);
    if (argc != 1) {
        fprintf(stderr, "usage: c_callers_test [lcs LOCALE]\n");
        return 2;
    }
    attributes_round_trip();
    value_encoding_and_truncation();
    objects_round_trip();
    server_registrations_round_trip();
    protected_objects_round_trip();
    principals_round_trip();
    server_messages_round_trip();
    acls_round_trip();
    actions_round_trip();
    policies_round_trip();
    database_records_round_trip();
    namevalue_round_trip();
    audit_round_trip();
    type_code_round_trips();
    record_types();
    header_and_buffers();
    der_inspection();
    if (failures != 0) {
        fprintf(stderr, "%d checks failed\n", failures);
        return 1;
    }
    printf("every check passed\n");
    return 0;
}
