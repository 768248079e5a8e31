// An independent check of the T.61 tables: glibc's iconv ("T.61-8BIT") must agree with IA52T61
// and T612BMP on the letters both define. Where the library keeps a different form deliberately,
// for compatibility with existing buffers, the letter is named and left out.
#include <cerrno>
#include <set>

#include <iconv.h>

#include <gtest/gtest.h>

#include "asnbase.h"
#include "converter_run.h"

using namespace codeset_test;

namespace {

// One iconv conversion descriptor, closed when it goes out of scope.
class Iconv {
  public:
    Iconv(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
    ~Iconv() {
        if (available())
            iconv_close(cd_);
    }
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;

    bool available() const { return cd_ != reinterpret_cast<iconv_t>(-1); }

    // The whole input converted, or false when iconv has no form for some of it.
    bool convert(const Octets& input, Octets& output) {
        iconv(cd_, nullptr, nullptr, nullptr, nullptr);
        Octets in = input;
        char out[64];
        char* in_p = reinterpret_cast<char*>(in.data());
        size_t in_left = in.size();
        char* out_p = out;
        size_t out_left = sizeof out;
        if (iconv(cd_, &in_p, &in_left, &out_p, &out_left) == static_cast<size_t>(-1))
            return false;
        if (iconv(cd_, nullptr, nullptr, &out_p, &out_left) == static_cast<size_t>(-1))
            return false;
        output.assign(out, out_p);
        return in_left == 0;
    }

  private:
    iconv_t cd_;
};

// The Latin-1 letters: A-Z, a-z and U+00C0..U+00FF without the two signs D7 and F7.
std::vector<unsigned char> latin1_letters() {
    std::vector<unsigned char> letters;
    for (unsigned c = 0x41; c <= 0x7A; ++c)
        if (c <= 0x5A || c >= 0x61)
            letters.push_back(static_cast<unsigned char>(c));
    for (unsigned c = 0xC0; c <= 0xFF; ++c)
        if (c != 0xD7 && c != 0xF7)
            letters.push_back(static_cast<unsigned char>(c));
    return letters;
}

// Eth: the library writes F2 and reads F3 as U+03B4, kept for compatibility with existing
// buffers; iconv uses F3 for eth.
const unsigned char kEth = 0xF0;

const char* const kNoT61 = "iconv has no T.61-8BIT converter here";

TEST(T61AgainstIconv, IA52T61AgreesOnTheLatin1Letters) {
    Iconv to_t61("T.61-8BIT", "ISO-8859-1");
    if (!to_t61.available())
        GTEST_SKIP() << kNoT61;
    int compared = 0;
    for (unsigned char letter : latin1_letters()) {
        SCOPED_TRACE(::testing::Message() << "Latin-1 0x" << std::hex << unsigned(letter));
        Octets theirs;
        const Outcome ours = convert(IA52T61, {letter});
        if (letter == kEth || ours.status != KELM_ASN_OK || !to_t61.convert({letter}, theirs))
            continue;
        EXPECT_EQ(to_hex(ours.output), to_hex(theirs));
        ++compared;
    }
    EXPECT_GE(compared, 110) << "too few letters compared for the check to mean much";
}

TEST(T61AgainstIconv, T612BMPAgreesOnTheT61FormsOfTheLatin1Letters) {
    Iconv to_t61("T.61-8BIT", "ISO-8859-1");
    Iconv from_t61("UCS-2BE", "T.61-8BIT");
    if (!to_t61.available())
        GTEST_SKIP() << kNoT61;
    if (!from_t61.available())
        GTEST_SKIP() << kNoT61;
    int compared = 0;
    for (unsigned char letter : latin1_letters()) {
        SCOPED_TRACE(::testing::Message() << "Latin-1 0x" << std::hex << unsigned(letter));
        Octets t61, theirs;
        if (letter == kEth || !to_t61.convert({letter}, t61))
            continue;
        const Outcome ours = convert(T612BMP, t61);
        if (ours.status != KELM_ASN_OK || !from_t61.convert(t61, theirs))
            continue;
        EXPECT_EQ(to_hex(ours.output), to_hex(theirs)) << "T.61 " << to_hex(t61);
        EXPECT_EQ(to_hex(ours.output), to_hex({0x00, letter}));
        ++compared;
    }
    EXPECT_GE(compared, 110) << "too few letters compared for the check to mean much";
}

TEST(T61AgainstIconv, T612BMPAgreesOnTheAccentedLettersBothDefine) {
    Iconv from_t61("UCS-2BE", "T.61-8BIT");
    if (!from_t61.available())
        GTEST_SKIP() << kNoT61;
    // Caron with small n writes U+0048, kept for compatibility with existing buffers.
    const std::set<Octets> kept_different = {{0xCF, 0x6E}};
    int compared = 0;
    for (unsigned accent = 0xC1; accent <= 0xCF; ++accent) {
        for (unsigned letter = 0x41; letter <= 0x7A; ++letter) {
            if (letter > 0x5A && letter < 0x61)
                continue;
            const Octets t61 = {static_cast<unsigned char>(accent),
                                static_cast<unsigned char>(letter)};
            SCOPED_TRACE(to_hex(t61));
            Octets theirs;
            const Outcome ours = convert(T612BMP, t61);
            if (kept_different.count(t61) || ours.status != KELM_ASN_OK ||
                !from_t61.convert(t61, theirs))
                continue;
            EXPECT_EQ(to_hex(ours.output), to_hex(theirs));
            ++compared;
        }
    }
    EXPECT_GE(compared, 140) << "too few accented letters compared for the check to mean much";
}

} // namespace
