// The library's encodings read by another decoder: random records of every type (made as the
// record battery makes them) and the re-encodings of what the records fuzz target decodes from
// its seed corpus and regression inputs, with the four-byte header stripped, are decoded by
// asn1c's converter, built from the records' ASN.1 module, as the type that the module names for
// their record, and encoded back to DER. The converter must accept each and give back the same
// bytes: it read the record that the library wrote, element for element.
#include <dirent.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "kelm/kelmasn.h"
#include "random_records.h"
#include "record_registry.h"

namespace {

using Bytes = std::vector<unsigned char>;

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void write_file(const std::string& path, const Bytes& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

// The module's type of each C record, from the line "-- record: NAME" in front of each type.
const std::map<std::string, std::string>& module_types() {
    static const std::map<std::string, std::string> types = [] {
        std::map<std::string, std::string> out;
        std::ifstream in(KELMASN_ASN1_MODULE);
        std::string line, record;
        const std::string marker = "-- record: ";
        while (std::getline(in, line)) {
            if (line.compare(0, marker.size(), marker) == 0) {
                record = line.substr(marker.size());
                continue;
            }
            if (!record.empty())
                out[record] = line.substr(0, line.find(' '));
            record.clear();
        }
        return out;
    }();
    return types;
}

// A path of this test process under TMPDIR (or /tmp).
std::string scratch_path(const std::string& name) {
    const char* dir = std::getenv("TMPDIR");
    return std::string(dir ? dir : "/tmp") + "/kelmasn_module_" + std::to_string(getpid()) + "_" +
           name;
}

// Runs the converter on `body` as `type`: BER to XER, then XER to DER, with the module's
// constraints checked when `checked`. Returns what went wrong, or an empty string when the DER is
// `body`.
std::string converter_round_trip(const std::string& type, const Bytes& body, bool checked = true) {
    const std::string der = scratch_path("in.der"), xer = scratch_path("out.xer"),
                      again = scratch_path("again.der"), err = scratch_path("stderr");
    write_file(der, body);
    const std::string converter = std::string("'") + KELMASN_ASN1_CONVERTER + "' -p " + type;
    std::string problem;
    if (std::system(
            (converter + " -1 -iber -oxer '" + der + "' >'" + xer + "' 2>'" + err + "'").c_str()) !=
        0)
        problem = "the converter cannot decode it as " + type + ": " + read_file(err);
    else if (std::system((converter + (checked ? " -1 -c" : " -1") + " -ixer -oder '" + xer +
                          "' >'" + again + "' 2>'" + err + "'")
                             .c_str()) != 0)
        problem = "the converter cannot encode its own XER of " + type + ": " + read_file(err);
    else {
        const std::string back = read_file(again);
        if (Bytes(back.begin(), back.end()) != body)
            problem = "the converter reads it as another value of " + type + ":\n" + read_file(xer);
    }
    for (const std::string& path : {der, xer, again, err})
        std::remove(path.c_str());
    return problem;
}

// Whether `text` is UTF-8 as RFC 3629 defines it: shortest forms only, no surrogates, nothing
// past U+10FFFF.
bool is_utf8(const unsigned char* text, size_t size) {
    size_t i = 0;
    while (i < size) {
        const unsigned char lead = text[i];
        size_t more = 0;
        unsigned long low = 0;
        if (lead < 0x80) {
            ++i;
            continue;
        } else if (lead >= 0xC2 && lead <= 0xDF) {
            more = 1, low = 0x80;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            more = 2, low = 0x800;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            more = 3, low = 0x10000;
        } else {
            return false;
        }
        if (size - i <= more)
            return false;
        unsigned long value = lead & (0x3F >> more);
        for (size_t k = 1; k <= more; ++k) {
            if ((text[i + k] & 0xC0) != 0x80)
                return false;
            value = (value << 6) | (text[i + k] & 0x3F);
        }
        if (value < low || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
            return false;
        i += more + 1;
    }
    return true;
}

// Whether a DER encoding (tags of one octet, which is all the module uses) holds a UTF8String,
// at any depth, whose octets are not UTF-8.
bool holds_text_that_is_not_utf8(const unsigned char* der, size_t size) {
    size_t at = 0;
    while (at + 2 <= size) {
        const unsigned char tag = der[at];
        size_t length = der[at + 1], header = 2;
        if (length & 0x80) {
            const size_t octets = length & 0x7F;
            if (octets == 0 || octets > sizeof(size_t) || at + 2 + octets > size)
                return false;
            length = 0;
            for (size_t k = 0; k < octets; ++k)
                length = (length << 8) | der[at + 2 + k];
            header += octets;
        }
        if (length > size - at - header)
            return false;
        const unsigned char* content = der + at + header;
        if ((tag & 0x20) ? holds_text_that_is_not_utf8(content, length)
                         : tag == 0x0C && !is_utf8(content, length))
            return true;
        at += header + length;
    }
    return false;
}

// The encoding without its four-byte header.
Bytes body_of(const kelm_asn_buffer_t& buffer) {
    return buffer.length > 4 ? Bytes(buffer.data + 4, buffer.data + buffer.length) : Bytes();
}

// Record types with typed entry points, and those reached by type code (code 0 for the first).
struct TypeUnderTest {
    const kelm_record_type* type;
    unsigned int code;
};

std::vector<TypeUnderTest> all_types() {
    std::vector<TypeUnderTest> out;
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        out.push_back({types[i], 0});
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        out.push_back({coded[i].type, coded[i].code});
    return out;
}

std::string type_label(const ::testing::TestParamInfo<TypeUnderTest>& info) {
    return info.param.type->record_name;
}

class ModuleCrossDecoding : public ::testing::TestWithParam<TypeUnderTest> {};

} // namespace

TEST_P(ModuleCrossDecoding, RandomRecordsAsTheLibraryEncodesThemDecodeWithTheModule) {
    const TypeUnderTest& param = GetParam();
    const kelm_record_type& type = *param.type;
    const auto found = module_types().find(type.record_name);
    ASSERT_NE(found, module_types().end()) << "the module has no type of " << type.record_name;
    kelm_test::RandomRecords generator(2026);
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(::testing::Message() << "round " << round);
        void* record = std::calloc(1, type.record_size);
        generator.fill(type, record, 0);
        kelm_asn_buffer_t wire{0, nullptr};
        const unsigned int status =
            param.code != 0 ? kelmasn_encode_obj(2, record, param.code, wire)
                            : kelm_asn_record::encode(type, record, wire, 2, KELM_SECURITY_PLAIN);
        kelm_asn_record::free_record(type, record);
        std::free(record);
        ASSERT_EQ(status, 0u);
        const Bytes body = body_of(wire);
        kelm_asn_buffer_free(wire);
        EXPECT_EQ(converter_round_trip(found->second, body), "");
    }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, ModuleCrossDecoding, ::testing::ValuesIn(all_types()),
                         type_label);

// The fuzz target for records picks the type with the first byte of its input, decodes the rest
// and re-encodes what decodes; those re-encodings of its seeds and regression inputs decode with
// the module too. A UTF8String's octets go through the library as they are, UTF-8 or not, while
// the converter's constraint check refuses text that is not UTF-8: such a re-encoding must hold a
// UTF8String that is not UTF-8, and must come back unchanged through the converter without the
// check.
TEST(ModuleCrossDecodingOfFuzzInputs, ReEncodingsOfTheRecordsFuzzInputsDecodeWithTheModule) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    unsigned int coded_count = 0;
    kelm_type_code_types(coded_count);
    unsigned int checked = 0, not_utf8 = 0;
    for (const std::string& folder : {std::string(KELMASN_FUZZ_DIR) + "/corpus/fuzz_records",
                                      std::string(KELMASN_FUZZ_DIR) + "/regressions"}) {
        std::vector<std::string> names;
        if (DIR* dir = opendir(folder.c_str())) {
            while (const dirent* entry = readdir(dir))
                if (entry->d_name[0] != '.')
                    names.emplace_back(entry->d_name);
            closedir(dir);
        }
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            const std::string input = read_file(folder + "/" + name);
            if (input.empty())
                continue;
            const unsigned int selector =
                static_cast<unsigned char>(input[0]) % (count + coded_count);
            if (selector >= count)
                continue;
            const kelm_record_type& type = *types[selector];
            SCOPED_TRACE(::testing::Message()
                         << folder << "/" << name << " as " << type.record_name);
            Bytes bytes(input.begin() + 1, input.end());
            kelm_asn_buffer_t in{bytes.size(), bytes.empty() ? nullptr : bytes.data()};
            void* record = std::calloc(1, type.record_size);
            ::testing::internal::CaptureStderr();
            const unsigned int decoded =
                kelm_asn_record::decode(type, record, in, 2, KELM_SECURITY_PLAIN);
            ::testing::internal::GetCapturedStderr();
            kelm_asn_buffer_t wire{0, nullptr};
            const unsigned int encoded =
                decoded == 0 ? kelm_asn_record::encode(type, record, wire, 2, KELM_SECURITY_PLAIN)
                             : 1;
            kelm_asn_record::free_record(type, record);
            std::free(record);
            if (encoded == 0) {
                ++checked;
                const std::string& module_type = module_types().at(type.record_name);
                const Bytes body = body_of(wire);
                const std::string problem = converter_round_trip(module_type, body);
                if (problem.find("constraint check failed: UTF8String") != std::string::npos) {
                    ++not_utf8;
                    EXPECT_TRUE(holds_text_that_is_not_utf8(body.data(), body.size())) << problem;
                    EXPECT_EQ(converter_round_trip(module_type, body, false), "");
                } else {
                    EXPECT_EQ(problem, "");
                }
            }
            kelm_asn_buffer_free(wire);
        }
    }
    EXPECT_GT(checked, 10u);
    EXPECT_LT(not_utf8, checked);
}

// The text check used above, on its definition's edge cases.
TEST(ModuleCrossDecodingOfFuzzInputs, TextCheckFollowsUtf8Definition) {
    const auto utf8 = [](std::initializer_list<unsigned char> octets) {
        const std::vector<unsigned char> text(octets);
        return is_utf8(text.data(), text.size());
    };
    EXPECT_TRUE(utf8({}));
    EXPECT_TRUE(utf8({'G', 'e', 'n', 0xC3, 0xA8, 'v', 'e'}));
    EXPECT_TRUE(utf8({0xE2, 0x82, 0xAC}));
    EXPECT_TRUE(utf8({0xF4, 0x8F, 0xBF, 0xBF}));
    EXPECT_FALSE(utf8({0x80}));
    EXPECT_FALSE(utf8({0xC0, 0x80}));
    EXPECT_FALSE(utf8({0xC3}));
    EXPECT_FALSE(utf8({0xE0, 0x80, 0x80}));
    EXPECT_FALSE(utf8({0xED, 0xA0, 0x80}));
    EXPECT_FALSE(utf8({0xF4, 0x90, 0x80, 0x80}));
    EXPECT_FALSE(utf8({0xC3, 'A'}));
    const unsigned char nested_bad[] = {0x30, 0x05, 0x30, 0x03, 0x0C, 0x01, 0xFF};
    const unsigned char nested_good[] = {0x30, 0x06, 0x30, 0x04, 0x0C, 0x02, 0xC3, 0xA8};
    const unsigned char octets_bad[] = {0x30, 0x03, 0x04, 0x01, 0xFF};
    EXPECT_TRUE(holds_text_that_is_not_utf8(nested_bad, sizeof nested_bad));
    EXPECT_FALSE(holds_text_that_is_not_utf8(nested_good, sizeof nested_good));
    EXPECT_FALSE(holds_text_that_is_not_utf8(octets_bad, sizeof octets_bad));
}
