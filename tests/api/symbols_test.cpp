// The shared library's dynamic symbol table holds every exported name.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "record_registry.h"

namespace {

// The names of the defined dynamic symbols of the shared library, demangled unless asked for
// the mangled names.
std::set<std::string> exported_names(bool demangled = true) {
    std::set<std::string> names;
    const std::string command = std::string("nm -D --defined-only ") +
                                (demangled ? "--demangle '" : "'") + KELMASN_SHARED_LIBRARY + "'";
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr)
        return names;
    char line[4096];
    while (std::fgets(line, sizeof line, pipe) != nullptr) {
        std::string text(line);
        if (!text.empty() && text.back() == '\n')
            text.pop_back();
        // "<address> <kind> <name>"
        const size_t first = text.find(' ');
        const size_t second = first == std::string::npos ? first : text.find(' ', first + 1);
        if (second == std::string::npos)
            continue;
        std::string name = text.substr(second + 1);
        const size_t version = name.find('@'); // "name@@KELMASN_1"
        if (version != std::string::npos)
            name.erase(version);
        names.insert(name);
    }
    pclose(pipe);
    return names;
}

const char* const kDerInspection[] = {
    "kelmAsnGetType(unsigned char**, unsigned int*, unsigned int*, unsigned int*, unsigned int*)",
    "kelmAsnGetLength(unsigned char**, unsigned int*, unsigned int*, unsigned int*)",
    "kelmAsnGetIntegerValue(unsigned char**, unsigned int*, unsigned int, long*)",
    "kelmAsnGetIntegerValue(unsigned char**, unsigned int*, unsigned int, unsigned char**, "
    "unsigned int*, int)",
    "kelmAsnGetLongIntegerValueLittleEndian(unsigned char**, unsigned int*, unsigned int, "
    "unsigned char**, unsigned int*)",
    "kelmAsnGetLongIntegerValueBigEndian(unsigned char**, unsigned int*, unsigned int, "
    "unsigned char**, unsigned int*)",
    "kelmAsnGetNullValue(unsigned char**, unsigned int*, unsigned int)",
    "kelmAsnGetBitstringValue(unsigned char**, unsigned int*, unsigned int, unsigned char**, "
    "unsigned int*)",
    "kelmAsnGetCharstringValue(unsigned char**, unsigned int*, unsigned int, char**)",
    "kelmAsnGetOctetstringValue(unsigned char**, unsigned int*, unsigned int, unsigned char**, "
    "unsigned int*)",
    "kelmAsnGetOIDValue(unsigned char**, unsigned int*, unsigned int, kelm_asn_oid_t*)",
    "check_EOC(kelm_r_buffer_t)",
};

const char* const kBuffers[] = {
    "kelm_buffer_t::kelm_buffer_t(security_t)",
    "kelm_buffer_t::kelm_buffer_t(kelm_memory_funcs_t)",
    "kelm_buffer_t::kelm_buffer_t(kelm_memory_funcs_t, security_t)",
    "kelm_buffer_t::kelm_buffer_t(unsigned int, security_t)",
    "kelm_buffer_t::kelm_buffer_t(unsigned int, kelm_memory_funcs_t)",
    "kelm_buffer_t::kelm_buffer_t(unsigned int, kelm_memory_funcs_t, security_t)",
    "kelm_buffer_t::~kelm_buffer_t()",
    "kelm_buffer_t::extend(unsigned int)",
    "kelm_buffer_t::append(kelm_r_buffer_t const&)",
    "kelm_buffer_t::append(unsigned char const*, unsigned int)",
    "kelm_buffer_t::append(char const*)",
    "kelm_buffer_t::append_int(int)",
    "kelm_buffer_t::clear()",
    "kelm_buffer_t::detach(unsigned char*&, unsigned int&)",
    "kelm_r_buffer_t::set(unsigned char*, unsigned int)",
    "kelm_r_buffer_t::reset()",
    "kelm_r_buffer_t::operator==(kelm_r_buffer_t const&) const",
    "kelm_memory_funcs_t::malloc(unsigned long) const",
    "kelm_memory_funcs_t::free(void*) const",
    "kelm_memory_funcs_t::realloc(void*, unsigned long) const",
    "kelm_memory_funcs_t::calloc(unsigned long, unsigned long) const",
    "vtable for kelm_buffer_t",
    "typeinfo for kelm_asn_memexception",
    "kelm_asn_status_text(unsigned int)",
    "kelm_asn_report_exception(kelm_asn_exception const&)",
};

const char* const kCodeSets[] = {
    "IA52T61(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "T612BMP(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "T612IA5(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "BMP2IA5(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "IA52U(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "IA52BMP(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "BMP2U(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "U2IA5(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "U2BMP(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "UTF82IA5(kelm_r_buffer_t, kelm_buffer_t&)",
    "UTF82BMP(kelm_r_buffer_t, kelm_buffer_t&)",
    "IA52UTF8(kelm_r_buffer_t, kelm_buffer_t&)",
    "BMP2UTF8(kelm_r_buffer_t, kelm_buffer_t&)",
    "U2UTF8(kelm_r_buffer_t, kelm_buffer_t&)",
    "IA52V(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "IA52P(kelm_r_buffer_t const&, kelm_buffer_t&)",
    "IA52Local_table",
    "Local2IA5_table",
};

const char* const kCharStrings[] = {
    "kelm_asn_charstring::kelm_asn_charstring(security_t)",
    "kelm_asn_ia5String::kelm_asn_ia5String(security_t)",
    "kelm_asn_printableString::kelm_asn_printableString(security_t)",
    "kelm_asn_visibleString::kelm_asn_visibleString(security_t)",
    "kelm_asn_teletexString::kelm_asn_teletexString(security_t)",
    "kelm_asn_bmpString::kelm_asn_bmpString(security_t)",
    "kelm_asn_universalString::kelm_asn_universalString(security_t)",
    "kelm_asn_UTF8String::kelm_asn_UTF8String(security_t)",
    "kelm_asn_directoryString::kelm_asn_directoryString(security_t)",
    "kelm_asn_charstring::set_value_C(char*)",
    "kelm_asn_charstring::get_value_C(kelm_buffer_t&, char) const",
    "kelm_asn_charstring::convert2UTF8()",
    "kelm_asn_directoryString::set_preferred_codeset(unsigned int)",
    "vtable for kelm_asn_directoryString",
    "typeinfo for kelm_asn_UTF8String",
};

const char* const kEntryPoints[] = {
    "kelmasn_version(kelm_asn_buffer_t const&, unsigned int&)",
    "kelm_asn_buffer_copy(kelm_asn_buffer_t const&, kelm_asn_buffer_t&, unsigned int&)",
    "kelm_asn_buffer_free(kelm_asn_buffer_t&)",
    "kelmAsnEncodeObj(kelm_asn_buffer_t&, uuid_t&)",
    "kelmAsnDecodeObj(kelm_asn_buffer_t&, uuid_t&)",
    "kelmAsnEncodeObjLCS(kelm_asn_buffer_t&, uuid_t&)",
    "kelmAsnDecodeObjLCS(kelm_asn_buffer_t&, uuid_t&)",
    "kelmAsnFreeObj(uuid_t&)",
    "kelmAsnEncodeObj(kelm_asn_buffer_t&, value_s_t&)",
    "kelmAsnDecodeObj(kelm_asn_buffer_t&, value_s_t&)",
    "kelmAsnEncodeObjLCS(kelm_asn_buffer_t&, value_s_t&)",
    "kelmAsnDecodeObjLCS(kelm_asn_buffer_t&, value_s_t&)",
    "kelmAsnFreeObj(value_s_t&)",
    "kelmAsnEncodeObj(kelm_asn_buffer_t&, attr_s_t&)",
    "kelmAsnDecodeObj(kelm_asn_buffer_t&, attr_s_t&)",
    "kelmAsnEncodeObjLCS(kelm_asn_buffer_t&, attr_s_t&)",
    "kelmAsnDecodeObjLCS(kelm_asn_buffer_t&, attr_s_t&)",
    "kelmAsnFreeObj(attr_s_t&)",
    "kelmAsnEncodeObj(kelm_asn_buffer_t&, attrlist_s_t&)",
    "kelmAsnDecodeObj(kelm_asn_buffer_t&, attrlist_s_t&)",
    "kelmAsnEncodeObjLCS(kelm_asn_buffer_t&, attrlist_s_t&)",
    "kelmAsnDecodeObjLCS(kelm_asn_buffer_t&, attrlist_s_t&)",
    "kelmAsnFreeObj(attrlist_s_t&)",
    "kelm_asnbase::saveEncoding(kelm_asn_object const&, int, kelm_asn_buffer_t&)",
    "kelm_asnbase::loadObject(kelm_asn_object&, int, kelm_asn_buffer_t const&)",
    "kelm_intvalue(kelm_asn_integer const&)",
    "kelm_free_strings(int, char**)",
    "NULL_STRING",
};

const char* const kTypeCodeEntryPoints[] = {
    "kelmasn_encode_obj(int, void*, unsigned int, kelm_asn_buffer_t&)",
    "kelmasn_decode_obj(int, kelm_asn_buffer_t&, unsigned int, void*)",
    "kelmasn_obj_free(int, unsigned int, void*)",
    "main_func(int, int, void*, unsigned int, kelm_asn_buffer_t&)",
    "kelm_asn_cert_request_in::kelm_asn_cert_request_in(security_t)",
    "kelm_asn_cert_request_in::set_value(cert_request_in const&)",
    "kelm_asn_cert_request_in::get_value(cert_request_in&) const",
    "kelm_asn_cert_request_in::free_obj(cert_request_in&)",
    "kelm_asn_ekobj_update_t::kelm_asn_ekobj_update_t(security_t)",
    "kelm_asn_ekobj_update_t::set_value(ekobj_update_s_t const&)",
    "kelm_asn_ekobj_update_t::get_value(ekobj_update_s_t&) const",
    "kelm_asn_ekobj_update_t::free_obj(ekobj_update_s_t&)",
    "kelm_asn_ekobj_update_list_t::kelm_asn_ekobj_update_list_t(security_t)",
    "kelm_asn_ekobj_update_list_t::set_value(ekobj_update_list_s_t const&)",
    "kelm_asn_ekobj_update_list_t::get_value(ekobj_update_list_s_t&) const",
    "kelm_asn_ekobj_update_list_t::free_obj(ekobj_update_list_s_t&)",
    "vtable for kelm_asn_cert_request_in",
    "vtable for kelm_asn_ekobj_update_t",
    "vtable for kelm_asn_ekobj_update_list_t",
    "kelm_v37_asnbase::kelm_v37_asnbase(security_t)",
};

// The entry points for C callers (kelmasn_c.h), with C linkage: unmangled names.
const char* const kCEntryPoints[] = {
    "kelmasn_c_encode",
    "kelmasn_c_decode",
    "kelmasn_c_encode_lcs",
    "kelmasn_c_decode_lcs",
    "kelmasn_c_free",
    "kelmasn_c_record_type_count",
    "kelmasn_c_record_type_name",
    "kelmasn_c_record_type_named",
    "kelmasn_c_encode_obj",
    "kelmasn_c_decode_obj",
    "kelmasn_c_obj_free",
    "kelmasn_c_version",
    "kelmasn_c_buffer_copy",
    "kelmasn_c_buffer_free",
    "kelmasn_c_status_text",
    "kelmasn_c_library_version",
    "kelmasn_c_get_type",
    "kelmasn_c_get_length",
    "kelmasn_c_get_integer_value",
    "kelmasn_c_get_integer_bytes",
    "kelmasn_c_get_long_integer_value_little_endian",
    "kelmasn_c_get_long_integer_value_big_endian",
    "kelmasn_c_get_null_value",
    "kelmasn_c_get_bitstring_value",
    "kelmasn_c_get_charstring_value",
    "kelmasn_c_get_octetstring_value",
    "kelmasn_c_get_oid_value",
};

void expect_all_exported(const std::set<std::string>& names, const char* const* begin,
                         const char* const* end) {
    for (const char* const* name = begin; name != end; ++name)
        EXPECT_TRUE(names.count(*name)) << "not in the dynamic symbol table: " << *name;
}

} // namespace

TEST(DynamicSymbols, EveryDerInspectionFunctionIsExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty()) << "nm printed nothing for " << KELMASN_SHARED_LIBRARY;
    expect_all_exported(names, std::begin(kDerInspection), std::end(kDerInspection));
}

TEST(DynamicSymbols, TheBufferClassesAreExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kBuffers), std::end(kBuffers));
}

TEST(DynamicSymbols, TheCodeSetConvertersAndTablesAreExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kCodeSets), std::end(kCodeSets));
}

TEST(DynamicSymbols, TheCharacterStringClassesAreExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kCharStrings), std::end(kCharStrings));
}

TEST(DynamicSymbols, TheEntryPointsOfTheRecordTypesAreExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kEntryPoints), std::end(kEntryPoints));
}

TEST(DynamicSymbols, TheTypeCodeEntryPointsTheirDispatcherAndClassesAreExported) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kTypeCodeEntryPoints), std::end(kTypeCodeEntryPoints));
}

TEST(DynamicSymbols, TheCEntryPointsAreExportedWithCLinkage) {
    const std::set<std::string> names = exported_names(false);
    ASSERT_FALSE(names.empty());
    expect_all_exported(names, std::begin(kCEntryPoints), std::end(kCEntryPoints));
}

TEST(DynamicSymbols, EveryKnownRecordTypeHasItsFiveEntryPoints) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    ASSERT_GE(count, 4u);
    for (unsigned int i = 0; i < count; ++i) {
        const std::string record = types[i]->record_name;
        for (const char* direction : {"Encode", "Decode"})
            for (const char* variant : {"", "LCS"})
                EXPECT_TRUE(names.count(std::string("kelmAsn") + direction + "Obj" + variant +
                                        "(kelm_asn_buffer_t&, " + record + "&)"))
                    << "kelmAsn" << direction << "Obj" << variant << " of " << record;
        EXPECT_TRUE(names.count("kelmAsnFreeObj(" + record + "&)")) << record;
    }
}

TEST(DynamicSymbols, InternalHelpersStayHidden) {
    const std::set<std::string> names = exported_names();
    ASSERT_FALSE(names.empty());
    for (const std::string& name : names) {
        EXPECT_EQ(name.find("anonymous namespace"), std::string::npos) << name;
        EXPECT_EQ(name.find("kelmasn_tool"), std::string::npos) << name;
        // Symbols of the library's own names, and those of the classes' vtables and typeinfo.
        std::string bare = name;
        for (const char* prefix : {"vtable for ", "typeinfo for ", "typeinfo name for "})
            if (bare.rfind(prefix, 0) == 0)
                bare.erase(0, std::strlen(prefix));
        const bool ours =
            bare.rfind("kelm", 0) == 0 || bare.rfind("asn_", 0) == 0 ||
            bare.rfind("check_EOC", 0) == 0 || bare == "NULL_STRING" ||
            bare.rfind("main_func(", 0) == 0 || bare.rfind("KELMASN_", 0) == 0 ||
            std::find(std::begin(kCodeSets), std::end(kCodeSets), name) != std::end(kCodeSets);
        EXPECT_TRUE(ours) << "unexpected export: " << name;
        // The local code-set module is internal.
        EXPECT_EQ(name.find("ZLC"), std::string::npos) << name;
        EXPECT_EQ(name.find("ZUTF8"), std::string::npos) << name;
        EXPECT_EQ(name.find("kelmz"), std::string::npos) << name;
    }
}

// The symbols the shared library exports are exactly those of the committed list: a change of
// the ABI, added or removed, is a deliberate edit of that list.
TEST(Symbols, ExportedSymbolsAreExactlyTheCommittedList) {
    std::ifstream list(KELMASN_SYMBOL_LIST);
    ASSERT_TRUE(list.good()) << KELMASN_SYMBOL_LIST;
    std::set<std::string> committed;
    for (std::string line; std::getline(list, line);)
        if (!line.empty() && line[0] != '#')
            committed.insert(line);
    std::set<std::string> exported = exported_names(false);
    exported.erase("KELMASN_1"); // the version node itself
    ASSERT_GT(committed.size(), 1000u);
    std::string added, removed;
    for (const std::string& name : exported)
        if (committed.count(name) == 0)
            added += "  " + name + "\n";
    for (const std::string& name : committed)
        if (exported.count(name) == 0)
            removed += "  " + name + "\n";
    EXPECT_EQ(added, "") << "exported but not in the committed list";
    EXPECT_EQ(removed, "") << "in the committed list but not exported";
}
