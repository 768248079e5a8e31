// The read-conversion matrix of the character strings, written once as a table of routes, and
// the conversions of IA5 text into each code set.
#include "asn_charstring_routes.h"

#include "asn_charstring.h"
#include "codeset.h"

namespace kelm_charstring {
namespace {

// Every step has the shape of the converters that take their source by reference.
using Step = unsigned int (*)(const kelm_r_buffer_t& source, kelm_buffer_t& destination);

// The UTF-8 converters take their source by value; these wrappers give them the shape of a Step
// under their own names, so that the table below reads with the converters' names.
unsigned int UTF82IA5(const kelm_r_buffer_t& s, kelm_buffer_t& d) {
    return ::UTF82IA5(s, d);
}
unsigned int UTF82BMP(const kelm_r_buffer_t& s, kelm_buffer_t& d) {
    return ::UTF82BMP(s, d);
}
unsigned int IA52UTF8(const kelm_r_buffer_t& s, kelm_buffer_t& d) {
    return ::IA52UTF8(s, d);
}
unsigned int BMP2UTF8(const kelm_r_buffer_t& s, kelm_buffer_t& d) {
    return ::BMP2UTF8(s, d);
}
unsigned int U2UTF8(const kelm_r_buffer_t& s, kelm_buffer_t& d) {
    return ::U2UTF8(s, d);
}

// The final test of a route: every octet must be in the PrintableString or VisibleString table.
enum class Check : unsigned char { none, printable, visible };
constexpr Check P = Check::printable;
constexpr Check V = Check::visible;

// One cell of the matrix: up to two converter steps, then an optional table check. A route
// without steps and without check copies the octets; a refused route always fails.
struct Route {
    bool refused;
    Step steps[2];
    Check check;
};

constexpr Route copy{false, {nullptr, nullptr}, Check::none};
constexpr Route fail{true, {nullptr, nullptr}, Check::none};
constexpr Route steps(Step first, Step second = nullptr) {
    return Route{false, {first, second}, Check::none};
}
constexpr Route check(Check table, Step first = nullptr) {
    return Route{false, {first, nullptr}, table};
}

// Rows and columns of the matrix.
constexpr unsigned int kStoredOrder[] = {
    KELM_CODESET_UTF8,    KELM_CODESET_PRINTABLE, KELM_CODESET_T61, KELM_CODESET_IA5,
    KELM_CODESET_VISIBLE, KELM_CODESET_UNIVERSAL, KELM_CODESET_BMP};
constexpr unsigned int kTargetOrder[] = {
    KELM_CODESET_IA5, KELM_CODESET_PRINTABLE, KELM_CODESET_VISIBLE, KELM_CODESET_T61,
    KELM_CODESET_BMP, KELM_CODESET_UNIVERSAL, KELM_CODESET_UTF8};

// Each row lists the routes to IA5, Printable, Visible, T.61, BMP, Universal and UTF-8.
// UTF-8 read as Universal goes through BMP, so a character above U+FFFF has no Universal form
// on that route, as it has none on the other converting routes out of UTF-8.
// A VisibleString value reads back only as VisibleString, kept for compatibility with existing
// buffers. UTF-8 read as Printable or Visible is checked octet by octet as if it were IA5.
// clang-format off
constexpr Route kRoutes[7][7] = {
/* 12 UTF-8     */ {steps(UTF82IA5), check(P), check(V), steps(UTF82IA5, IA52T61), steps(UTF82BMP), steps(UTF82BMP, BMP2U), copy},
/* 19 Printable */ {copy, copy, fail, steps(IA52T61), steps(IA52BMP), steps(IA52U), copy},
/* 20 T.61      */ {steps(T612IA5), check(P, T612IA5), check(V, T612IA5), copy, steps(T612BMP), steps(T612BMP, BMP2U), steps(T612BMP, BMP2UTF8)},
/* 22 IA5       */ {copy, check(P), check(V), steps(IA52T61), steps(IA52BMP), steps(IA52U), steps(IA52UTF8)},
/* 26 Visible   */ {fail, fail, copy, fail, fail, fail, fail},
/* 28 Universal */ {steps(U2IA5), check(P, U2IA5), check(V, U2IA5), steps(U2IA5, IA52T61), steps(U2BMP), copy, steps(U2UTF8)},
/* 30 BMP       */ {steps(BMP2IA5), check(P, BMP2IA5), check(V, BMP2IA5), steps(BMP2IA5, IA52T61), copy, steps(BMP2U), steps(BMP2UTF8)},
};
// clang-format on

// Position of `number` in `order`, or -1.
template <unsigned int N> int index_of(const unsigned int (&order)[N], unsigned int number) {
    for (unsigned int i = 0; i < N; ++i)
        if (order[i] == number)
            return static_cast<int>(i);
    return -1;
}

// IA5 text into each code set. IA52P and IA52V replace their destination's content instead of
// appending to it; ia5_to gives them an empty buffer of their own when `output` is not empty.
struct FromIA5 {
    unsigned int target;
    Step convert;  // null: copied
    bool replaces; // the converter clears its destination instead of appending
};
constexpr FromIA5 kFromIA5[] = {
    {KELM_CODESET_UTF8, IA52UTF8, false}, {KELM_CODESET_PRINTABLE, IA52P, true},
    {KELM_CODESET_T61, IA52T61, false},   {KELM_CODESET_IA5, nullptr, false},
    {KELM_CODESET_VISIBLE, IA52V, true},  {KELM_CODESET_UNIVERSAL, IA52U, false},
    {KELM_CODESET_BMP, IA52BMP, false},
};

constexpr unsigned int kLocalTextOrder[] = {
    KELM_CODESET_PRINTABLE, KELM_CODESET_T61,  KELM_CODESET_VISIBLE,  KELM_CODESET_IA5,
    KELM_CODESET_BMP,       KELM_CODESET_UTF8, KELM_CODESET_UNIVERSAL};
constexpr unsigned int kIA5PreferredOrder[] = {KELM_CODESET_PRINTABLE, KELM_CODESET_T61,
                                               KELM_CODESET_VISIBLE,   KELM_CODESET_IA5,
                                               KELM_CODESET_UTF8,      KELM_CODESET_BMP};
// After IA5, UTF-8 and BMP the pass goes on to Universal and then to the three checked code sets,
// so that every class meets each code set it accepts: a UniversalString takes any IA5 text as
// UCS-4.
constexpr unsigned int kIA5AcceptedOrder[] = {
    KELM_CODESET_IA5,       KELM_CODESET_UTF8, KELM_CODESET_BMP,    KELM_CODESET_UNIVERSAL,
    KELM_CODESET_PRINTABLE, KELM_CODESET_T61,  KELM_CODESET_VISIBLE};

constexpr TextPasses kLocalTextPasses{kLocalTextOrder, 7, kLocalTextOrder, 7};
constexpr TextPasses kIA5TextPasses{kIA5PreferredOrder, 6, kIA5AcceptedOrder, 7};

security_t stricter(security_t a, const kelm_buffer_t& b) {
    return a == KELM_SECURITY_SECURE || b.security == KELM_SECURITY_SECURE ? KELM_SECURITY_SECURE
                                                                           : KELM_SECURITY_PLAIN;
}

// Runs the steps and the check of `route` over `source` and appends the result to `output`,
// which is touched only on success: every converted text is held in a buffer of its own.
unsigned int run(const Route& route, const kelm_r_buffer_t& source, kelm_buffer_t& output,
                 security_t security) {
    if (route.refused)
        return KELM_ASN_UNREPRESENTABLE;
    const security_t held = stricter(security, output);
    kelm_buffer_t converted[2] = {kelm_buffer_t(output.hooks, held),
                                  kelm_buffer_t(output.hooks, held)};
    kelm_r_buffer_t text = source;
    for (unsigned int i = 0; i < 2 && route.steps[i] != nullptr; ++i) {
        if (route.steps[i](text, converted[i]) != KELM_ASN_OK)
            return KELM_ASN_UNREPRESENTABLE;
        text = converted[i];
    }
    if (route.check != Check::none) {
        kelm_buffer_t tested(output.hooks, held);
        if ((route.check == Check::printable ? IA52P : IA52V)(text, tested) != KELM_ASN_OK)
            return KELM_ASN_UNREPRESENTABLE;
    }
    output.append(text);
    return KELM_ASN_OK;
}

} // namespace

unsigned int read_as(const kelm_r_buffer_t& source, unsigned int stored, unsigned int target,
                     kelm_buffer_t& output, security_t security) {
    const int row = index_of(kStoredOrder, stored);
    const int column = index_of(kTargetOrder, target);
    if (row < 0 || column < 0)
        return KELM_ASN_UNREPRESENTABLE;
    return run(kRoutes[row][column], source, output, security);
}

unsigned int ia5_to(const kelm_r_buffer_t& ia5, unsigned int target, kelm_buffer_t& output) {
    for (const FromIA5& row : kFromIA5) {
        if (row.target != target)
            continue;
        if (row.convert == nullptr) {
            output.append(ia5);
            return KELM_ASN_OK;
        }
        // A converter that replaces its destination's content may write into an empty one.
        if (!row.replaces || output.used() == 0)
            return row.convert(ia5, output);
        kelm_buffer_t checked(output.hooks, output.security);
        if (row.convert(ia5, checked) != KELM_ASN_OK)
            return KELM_ASN_UNREPRESENTABLE;
        output.append(checked);
        return KELM_ASN_OK;
    }
    return KELM_ASN_UNREPRESENTABLE;
}

const TextPasses& local_text_passes() {
    return kLocalTextPasses;
}

const TextPasses& ia5_text_passes() {
    return kIA5TextPasses;
}

} // namespace kelm_charstring
