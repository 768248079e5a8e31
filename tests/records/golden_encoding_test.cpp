// The library against the golden encodings of tests/golden/: for every case there, the record of
// its JSON (read by the tool's JSON reader) encodes through the entry points to the four-byte
// header followed by the golden bytes, and the golden bytes behind the header decode to the same
// JSON. The golden bytes were written by asn1c's converter from the records' ASN.1 module, not by
// the library, so a record type whose fields the library declares differently from the module
// (an element of another type, two fields swapped, a nested record of another type, an optional
// record made mandatory) fails here.
#include <dirent.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "json_records.h"
#include "kelm/kelmasn.h"
#include "record_registry.h"
#include "record_types.h"
#include "test_locale.h"

namespace {

using Bytes = std::vector<unsigned char>;
using json = nlohmann::ordered_json;

// The entry points of one record type: the five typed ones, or those by type code (which have
// no local-code-set variant).
struct EntryPoints {
    const char* record;
    unsigned int (*encode)(kelm_asn_buffer_t& out, void* record);
    unsigned int (*decode)(kelm_asn_buffer_t& in, void* record);
    unsigned int (*encode_lcs)(kelm_asn_buffer_t& out, void* record);
    unsigned int (*decode_lcs)(kelm_asn_buffer_t& in, void* record);
    void (*release)(void* record);
};

template <class R> unsigned int typed_encode(kelm_asn_buffer_t& out, void* record) {
    return kelmAsnEncodeObj(out, *static_cast<R*>(record));
}
template <class R> unsigned int typed_decode(kelm_asn_buffer_t& in, void* record) {
    return kelmAsnDecodeObj(in, *static_cast<R*>(record));
}
template <class R> unsigned int typed_encode_lcs(kelm_asn_buffer_t& out, void* record) {
    return kelmAsnEncodeObjLCS(out, *static_cast<R*>(record));
}
template <class R> unsigned int typed_decode_lcs(kelm_asn_buffer_t& in, void* record) {
    return kelmAsnDecodeObjLCS(in, *static_cast<R*>(record));
}
template <class R> void typed_free(void* record) {
    kelmAsnFreeObj(*static_cast<R*>(record));
}

template <unsigned int Code> unsigned int coded_encode(kelm_asn_buffer_t& out, void* record) {
    return kelmasn_encode_obj(2, record, Code, out);
}
template <unsigned int Code> unsigned int coded_decode(kelm_asn_buffer_t& in, void* record) {
    return kelmasn_decode_obj(2, in, Code, record);
}
template <unsigned int Code> void coded_free(void* record) {
    kelmasn_obj_free(2, Code, record);
}

#define KELM_GOLDEN_TYPED(type, record)                                                            \
    {#record,                                                                                      \
     &typed_encode<record>,                                                                        \
     &typed_decode<record>,                                                                        \
     &typed_encode_lcs<record>,                                                                    \
     &typed_decode_lcs<record>,                                                                    \
     &typed_free<record>},
const EntryPoints kEntryPoints[] = {
    KELM_FOR_EACH_RECORD_TYPE(KELM_GOLDEN_TYPED){"cert_request_in",
                                                 &coded_encode<KELMASN_TYPE_CERT_REQUEST>,
                                                 &coded_decode<KELMASN_TYPE_CERT_REQUEST>, nullptr,
                                                 nullptr, &coded_free<KELMASN_TYPE_CERT_REQUEST>},
    {"ekobj_update_list_s_t", &coded_encode<KELMASN_TYPE_EKOBJ_UPDATE_LIST>,
     &coded_decode<KELMASN_TYPE_EKOBJ_UPDATE_LIST>, nullptr, nullptr,
     &coded_free<KELMASN_TYPE_EKOBJ_UPDATE_LIST>},
    {"int", &coded_encode<KELMASN_TYPE_INTEGER>, &coded_decode<KELMASN_TYPE_INTEGER>, nullptr,
     nullptr, &coded_free<KELMASN_TYPE_INTEGER>},
};
#undef KELM_GOLDEN_TYPED

const EntryPoints* entry_points_of(const std::string& record) {
    for (const EntryPoints& e : kEntryPoints)
        if (record == e.record)
            return &e;
    return nullptr;
}

// The record type of a golden folder: a type with typed entry points, or one reached by type code.
const kelm_record_type* record_type_of(const std::string& record) {
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        if (record == types[i]->record_name)
            return types[i];
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        if (record == coded[i].type->record_name)
            return coded[i].type;
    return nullptr;
}

std::string read_file(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

std::vector<std::string> entries_of(const std::string& folder) {
    std::vector<std::string> names;
    if (DIR* dir = opendir(folder.c_str())) {
        while (const dirent* entry = readdir(dir))
            if (entry->d_name[0] != '.')
                names.emplace_back(entry->d_name);
        closedir(dir);
    }
    std::sort(names.begin(), names.end());
    return names;
}

bool ends_with(const std::string& s, const std::string& tail) {
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

struct GoldenCase {
    std::string record; // the C record, the name of its folder
    std::string name;   // the case, the name of its files
    std::string path() const { return std::string(KELMASN_GOLDEN_DIR) + "/" + record + "/" + name; }
};

// The cases of a record type, in the order of their names.
std::vector<GoldenCase> cases_of(const std::string& record) {
    std::vector<GoldenCase> cases;
    for (const std::string& file : entries_of(std::string(KELMASN_GOLDEN_DIR) + "/" + record))
        if (ends_with(file, ".json"))
            cases.push_back({record, file.substr(0, file.size() - 5)});
    return cases;
}

bool ascii_only(const std::string& text) {
    return std::all_of(text.begin(), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// The record types of the golden folders.
std::vector<std::string> golden_records() {
    return entries_of(KELMASN_GOLDEN_DIR);
}

// Those that the local-code-set entry points serve: the types with typed entry points.
std::vector<std::string> typed_golden_records() {
    std::vector<std::string> records;
    for (const std::string& record : golden_records()) {
        const EntryPoints* entry = entry_points_of(record);
        if (entry != nullptr && entry->encode_lcs != nullptr)
            records.push_back(record);
    }
    return records;
}

// The four-byte header of version 2, 04 02 AC DC, in front of `body`.
Bytes with_header(const std::string& body) {
    Bytes out(4 + body.size());
    out[0] = 0x04;
    out[1] = 0x02;
    out[2] = 0xAC;
    out[3] = 0xDC;
    std::copy(body.begin(), body.end(), out.begin() + 4);
    return out;
}

// A zeroed record of a type, released through its entry points' free function.
class Record {
  public:
    Record(const kelm_record_type& type, const EntryPoints& entry)
        : entry_(entry), bytes_(std::calloc(1, type.record_size)) {}
    ~Record() {
        entry_.release(bytes_);
        std::free(bytes_);
    }
    Record(const Record&) = delete;
    Record& operator=(const Record&) = delete;
    void* get() const { return bytes_; }

  private:
    const EntryPoints& entry_;
    void* bytes_;
};

// One golden case of the record type under test: its JSON record and the header followed by its
// golden bytes.
struct LoadedCase {
    json document;
    Bytes golden;
};

// The golden cases of one record type, run through its entry points.
class GoldenType {
  public:
    explicit GoldenType(const std::string& record)
        : record_(record), type_(record_type_of(record)), entry_(entry_points_of(record)) {}

    // False, with a failure, when the record has no type, no entry points or no case.
    bool ready() const {
        EXPECT_NE(type_, nullptr) << "no record type is named " << record_;
        EXPECT_NE(entry_, nullptr) << "no entry points for " << record_;
        EXPECT_FALSE(cases_of(record_).empty()) << "no golden case of " << record_;
        return type_ != nullptr && entry_ != nullptr && !cases_of(record_).empty();
    }
    const EntryPoints& entry() const { return *entry_; }

    // Runs `check` on every case of the type (only those whose texts are ASCII when
    // `ascii_texts_only`), with the case named in the trace.
    template <class Check> void each_case(bool ascii_texts_only, Check check) const {
        for (const GoldenCase& c : cases_of(record_)) {
            SCOPED_TRACE("tests/golden/" + c.record + "/" + c.name);
            const std::string text = read_file(c.path() + ".json");
            if (ascii_texts_only && !ascii_only(text))
                continue;
            LoadedCase loaded{json::parse(text), with_header(read_file(c.path() + ".der"))};
            ASSERT_GT(loaded.golden.size(), 4u) << c.path() << ".der is missing or empty";
            check(loaded);
        }
    }

    // The library's encoding of the case's record through `encode`.
    Bytes encoding(const LoadedCase& loaded,
                   unsigned int (*encode)(kelm_asn_buffer_t&, void*)) const {
        Record record(*type_, *entry_);
        try {
            kelmasn_tool::record_from_json(*type_, loaded.document, record.get());
        } catch (const kelmasn_tool::JsonFieldError& e) {
            ADD_FAILURE() << "the record does not fit the library's type: " << e.what();
            return Bytes();
        }
        kelm_asn_buffer_t out{0, nullptr};
        const unsigned int status = encode(out, record.get());
        EXPECT_EQ(status, 0u);
        Bytes bytes = out.data != nullptr ? Bytes(out.data, out.data + out.length) : Bytes();
        kelm_asn_buffer_free(out);
        return bytes;
    }

    // The JSON of the record that `decode` makes of the golden bytes (read from a block of
    // exactly their size).
    json decoding(const LoadedCase& loaded,
                  unsigned int (*decode)(kelm_asn_buffer_t&, void*)) const {
        const Bytes& golden = loaded.golden;
        std::unique_ptr<unsigned char[]> exact(new unsigned char[golden.size()]);
        std::copy(golden.begin(), golden.end(), exact.get());
        kelm_asn_buffer_t in{golden.size(), exact.get()};
        Record record(*type_, *entry_);
        const unsigned int status = decode(in, record.get());
        EXPECT_EQ(status, 0u);
        return status == 0 ? kelmasn_tool::record_to_json(*type_, record.get()) : json();
    }

  private:
    std::string record_;
    const kelm_record_type* type_;
    const EntryPoints* entry_;
};

class GoldenEncoding : public ::testing::TestWithParam<std::string> {};

std::string record_label(const ::testing::TestParamInfo<std::string>& info) {
    return info.param;
}

} // namespace

TEST_P(GoldenEncoding, LibraryEncodingIsTheHeaderAndTheGoldenBytes) {
    const GoldenType golden(GetParam());
    ASSERT_TRUE(golden.ready());
    golden.each_case(false, [&](const LoadedCase& c) {
        EXPECT_EQ(golden.encoding(c, golden.entry().encode), c.golden);
    });
}

TEST_P(GoldenEncoding, GoldenBytesDecodeToTheRecord) {
    const GoldenType golden(GetParam());
    ASSERT_TRUE(golden.ready());
    golden.each_case(false, [&](const LoadedCase& c) {
        EXPECT_EQ(golden.decoding(c, golden.entry().decode).dump(2), c.document.dump(2));
    });
}

INSTANTIATE_TEST_SUITE_P(Golden, GoldenEncoding, ::testing::ValuesIn(golden_records()),
                         record_label);

// The local-code-set entry points in an ISO-8859-1 locale, for every type with typed entry points
// and every case whose texts are ASCII: the same bytes on the wire and the same record back.
// One test for all types, since building the locale is the slow part.
using GoldenEncodingInLocalCodeSet = kelm_test::Latin1Test;

TEST_F(GoldenEncodingInLocalCodeSet, LibraryEncodingIsTheHeaderAndTheGoldenBytes) {
    for (const std::string& record : typed_golden_records()) {
        const GoldenType golden(record);
        ASSERT_TRUE(golden.ready());
        golden.each_case(true, [&](const LoadedCase& c) {
            EXPECT_EQ(golden.encoding(c, golden.entry().encode_lcs), c.golden);
        });
    }
}

TEST_F(GoldenEncodingInLocalCodeSet, GoldenBytesDecodeToTheRecord) {
    for (const std::string& record : typed_golden_records()) {
        const GoldenType golden(record);
        ASSERT_TRUE(golden.ready());
        golden.each_case(true, [&](const LoadedCase& c) {
            EXPECT_EQ(golden.decoding(c, golden.entry().decode_lcs).dump(2), c.document.dump(2));
        });
    }
}

// Every record type, those reached by type code included, has its golden cases: the example and
// at least the smallest record; and every golden folder belongs to a record type.
TEST(GoldenFiles, EveryRecordTypeHasItsExampleAndItsSmallestRecord) {
    std::vector<std::string> records;
    unsigned int count = 0;
    const kelm_record_type* const* types = kelm_record_types(count);
    for (unsigned int i = 0; i < count; ++i)
        records.emplace_back(types[i]->record_name);
    const kelm_type_code_type* coded = kelm_type_code_types(count);
    for (unsigned int i = 0; i < count; ++i)
        records.emplace_back(coded[i].type->record_name);
    EXPECT_EQ(records.size(), 68u);
    for (const std::string& record : records) {
        const std::vector<std::string> files =
            entries_of(std::string(KELMASN_GOLDEN_DIR) + "/" + record);
        for (const char* file : {"example.json", "example.der", "minimal.json", "minimal.der"})
            EXPECT_NE(std::find(files.begin(), files.end(), file), files.end())
                << record << "/" << file;
    }
    for (const std::string& folder : entries_of(KELMASN_GOLDEN_DIR))
        EXPECT_NE(std::find(records.begin(), records.end(), folder), records.end())
            << "tests/golden/" << folder << " belongs to no record type";
}
