// The library keeps no state between calls, so calls on distinct cursors and buffers may run side
// by side. Under the tsan preset this is the test where ThreadSanitizer would see shared state.
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "kelm/kelmasn.h"

namespace {

std::vector<unsigned char> sample(const std::string& name) {
    std::ifstream in(std::string(KELMASN_EXAMPLES) + "/" + name, std::ios::binary);
    return std::vector<unsigned char>(std::istreambuf_iterator<char>(in),
                                      std::istreambuf_iterator<char>());
}

// Walks a private copy of `bytes` element by element, stepping into constructed elements, and
// writes every tag number, length and primitive contents into a buffer of its own.
std::vector<unsigned char> walk_into_buffer(std::vector<unsigned char> bytes, security_t security) {
    kelm_buffer_t out(security);
    // The identifier reader hands a high-tag position back through the second slot.
    unsigned char* slots[2] = {bytes.data(), nullptr};
    unsigned int remaining = static_cast<unsigned int>(bytes.size());
    while (remaining > 0) {
        unsigned char* const identifier = slots[0];
        unsigned int tag = 0, constructed = 0, tag_class = 0;
        if (kelmAsnGetType(&slots[0], &remaining, &tag, &constructed, &tag_class) != 0)
            break;
        if (slots[0] == identifier)
            slots[0] = slots[1] + 1;
        unsigned int definite = 0, length = 0;
        if (kelmAsnGetLength(&slots[0], &remaining, &definite, &length) != 0)
            break;
        out.append_int(static_cast<int>(tag));
        out.append_int(static_cast<int>(length));
        if (constructed || !definite || length == 0)
            continue;
        unsigned char* contents = nullptr;
        unsigned int count = 0;
        if (kelmAsnGetOctetstringValue(&slots[0], &remaining, length, &contents, &count) != 0)
            break;
        out.append(contents, count);
        std::free(contents);
    }
    return std::vector<unsigned char>(out.cursor, out.cursor + out.used());
}

} // namespace

TEST(Concurrency, DistinctCursorsAndBuffersWorkSideBySide) {
    const std::vector<unsigned char> input = sample("indefinite-high-tag.ber");
    ASSERT_FALSE(input.empty());
    const std::vector<unsigned char> expected = walk_into_buffer(input, KELM_SECURITY_PLAIN);
    ASSERT_FALSE(expected.empty());

    constexpr int kThreads = 4;
    constexpr int kRounds = 200;
    std::vector<int> mismatches(kThreads, 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&input, &expected, &mismatches, t] {
            // Half the threads use secure buffers, which wipe their storage as they grow and go.
            const security_t security = t % 2 ? KELM_SECURITY_SECURE : KELM_SECURITY_PLAIN;
            for (int round = 0; round < kRounds; ++round)
                if (walk_into_buffer(input, security) != expected)
                    ++mismatches[t];
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(mismatches[t], 0) << "thread " << t;
}

namespace {

// Decodes the same bytes from two threads at once, many times, each into records of its own, and
// re-encodes every record: a decode only reads its input, so each re-encoding is the input.
template <class Record> void decode_side_by_side(const std::string& name) {
    const std::vector<unsigned char> input = sample("der/" + name + ".der");
    ASSERT_FALSE(input.empty()) << name;
    std::vector<unsigned char> shared = input; // the one buffer both threads read
    const kelm_asn_buffer_t buffer = {shared.size(), shared.data()};
    auto decode_many = [&buffer](std::vector<unsigned char>& last, unsigned int& failures) {
        for (int i = 0; i < 100; ++i) {
            kelm_asn_buffer_t in = buffer;
            kelm_record_holder<Record> record;
            kelm_asn_buffer_t out = {0, nullptr};
            if (kelmAsnDecodeObj(in, record.record()) != 0 ||
                kelmAsnEncodeObj(out, record.record()) != 0) {
                ++failures;
                continue;
            }
            last.assign(out.data, out.data + out.length);
            kelm_asn_buffer_free(out);
        }
    };
    std::vector<unsigned char> first, second;
    unsigned int first_failures = 0, second_failures = 0;
    std::thread a(decode_many, std::ref(first), std::ref(first_failures));
    std::thread b(decode_many, std::ref(second), std::ref(second_failures));
    a.join();
    b.join();
    EXPECT_EQ(first_failures, 0u) << name;
    EXPECT_EQ(second_failures, 0u) << name;
    EXPECT_EQ(first, input) << name;
    EXPECT_EQ(second, input) << name;
    EXPECT_EQ(shared, input) << name << ": a decode wrote into its input";
}

} // namespace

TEST(Concurrency, TwoThreadsDecodeTheSameInputBytesAtOnce) {
    decode_side_by_side<attrlist_s_t>("attrlist_s_t");
    decode_side_by_side<acl_ext_s_t>("acl_ext_s_t");
    decode_side_by_side<namevalueList_s_t>("namevalueList_s_t");
    decode_side_by_side<ekprincipal_chain_s_t>("ekprincipal_chain_s_t");
    decode_side_by_side<zuauditevent_s_t>("zuauditevent_s_t");
    decode_side_by_side<ekaction_groups_s_t>("ekaction_groups_s_t");
}
