// Cases of the element-wise primitives: memory, arithmetic, search and thresholds.
#include <algorithm>
#include <bit>
#include <cstring>
#include <cwchar>
#include <string>
#include <type_traits>

#include "arrays.h"
#include "exports/tables.h"
#include "registry.h"
#include "routine.h"
#if KELOZOV_BENCH_VOLK
#include "peers/volk.h"
#endif
#if KELOZOV_BENCH_OPENCV
#include "peers/opencv_integer.h"
#endif

namespace zov::bench {

namespace {

// What a routine is called with. `value` is neither 0 nor 1, which have short cuts.
template <class In, class Out = In>
struct Operands {
  const In* a;
  const In* b;
  Out* out;
  int len;
  static constexpr Out value = static_cast<Out>(-1);
};

template <class O>
std::size_t Bytes(const O& o) {
  return static_cast<std::size_t>(o.len) * sizeof(*o.out);
}

// The shapes of calls, for our routines and for plain loops.
constexpr auto kTwoSources = [](auto f, const auto& o) { return f(o.a, o.b, o.out, o.len); };
constexpr auto kTwoSourcesInPlace = [](auto f, const auto& o) { return f(o.a, o.out, o.len); };
constexpr auto kConstant = [](auto f, const auto& o) { return f(o.a, o.value, o.out, o.len); };
constexpr auto kConstantInPlace = [](auto f, const auto& o) { return f(o.value, o.out, o.len); };
constexpr auto kOneSource = [](auto f, const auto& o) { return f(o.a, o.out, o.len); };
constexpr auto kInPlace = [](auto f, const auto& o) { return f(o.out, o.len); };
constexpr auto kScaled = [](auto f, const auto& o) { return f(o.a, o.out, o.len, 0); };
constexpr auto kFill = kConstantInPlace;
constexpr auto kReplace = [](auto f, const auto& o) { return f(o.a, o.out, o.len, 7, 9); };
constexpr auto kThreshold = [](auto f, const auto& o) { return f(o.a, o.out, o.len, 1.5f, 1.25f); };
constexpr auto kThresholdInPlace = [](auto f, const auto& o) {
  return f(o.out, o.len, 1.5f, 1.25f);
};
template <int kRelation>
constexpr auto kLimit = [](auto f, const auto& o) { return f(o.out, o.len, 1.5f, kRelation); };

struct Nothing {
  template <class O>
  void operator()(Contest&, const O&) const {}
};

// A family of routines over arrays, measured at every size.
struct Family {
  Cases& cases;
  const char* name;
  const char* unit;
  std::vector<std::size_t> sizes;

  // `morePeers(contest, operands)` adds peers beside the plain loop; `variant` tells cases of one
  // routine apart.
  template <class In, class Out = In, class Function, class Shape, class MorePeers = Nothing>
  void Add(const Routine<Function>& routine, Shape shape, MorePeers morePeers = {},
           Data data = Data::positive, const char* variant = "") const {
    for (const std::size_t bytes : sizes) {
      const std::size_t count = bytes / sizeof(In);
      const double work = static_cast<double>(std::strcmp(unit, "GB/s") == 0 ? bytes : count);
      const auto setUp = [=](Contest& contest) {
        In* const a = contest.Array<In>(count);
        In* const b = contest.Array<In>(count);
        Out* const out = contest.Array<Out>(count);
        FillRandom(a, count, data);
        FillRandom(b, count, data);
        FillRandom(out, count, data);
        const Operands<In, Out> o = {a, b, out, static_cast<int>(count)};
        contest.Ours([=, f = routine.entry] { return shape(f, o); });
        contest.Peer("plain loop", [=, f = routine.plain[contest.level()]] { return shape(f, o); });
        morePeers(contest, o);
      };
      cases.push_back(
          {name, std::string(routine.name) + variant, BytesLabel(bytes), unit, work, setUp});
    }
  }
};

// VOLK's kernel of a member, held to the level and unheld. `call(kernel, operands)` calls it.
#if KELOZOV_BENCH_VOLK
#define VOLK(member) (&VolkKernels::member)
template <class Kernel, class Call>
auto WithVolk(Kernel kernel, Call call) {
  return [=](Contest& contest, const auto& o) {
    contest.Peer("VOLK", [=, f = kVolkHeld[contest.level()]->*kernel] { call(f, o); });
    contest.Unheld("VOLK", [=, f = kVolkUnheld.*kernel] { call(f, o); });
  };
}
#else
#define VOLK(member) 0
template <class Call>
Nothing WithVolk(int, Call) {
  return {};
}
#endif

}  // namespace

std::string BytesLabel(std::size_t bytes) {
  if (bytes >= 1 << 20) return std::to_string(bytes >> 20) + " MiB";
  if (bytes >= 1 << 10) return std::to_string(bytes >> 10) + " KiB";
  return std::to_string(bytes) + " B";
}

// What the way through the entry costs over a straight call of the level routine.
void AddEntryCases(Cases& cases) {
  const auto routine = ROUTINE(zovsAbs_32f);
  cases.push_back({"entry", routine.name, "1 element", "ns", 1, [=](Contest& contest) {
                     Zov32f* const p = contest.Array<Zov32f>(16);
                     const auto call = [=](auto f) { return f(p, p + 1, 1); };
                     contest.Ours([=, f = routine.entry] { return call(f); });
                     contest.Peer("level routine", [=, f = zovTable_zovsAbs_32f[contest.level()]] {
                       return call(f);
                     });
                   }});
}

void AddMemoryCases(Cases& cases) {
  const Family memory = {cases, "memory", "GB/s", Sizes(256, 64 << 20, 4)};
  const auto copy = [](Contest& contest, const auto& o) {
    contest.Peer("memcpy", [=] { std::memcpy(o.out, o.a, Bytes(o)); });
  };
  const auto clear = [](Contest& contest, const auto& o) {
    contest.Peer("memset", [=] { std::memset(o.out, 0, Bytes(o)); });
  };
  const auto fillBytes = [](Contest& contest, const auto& o) {
    contest.Peer("memset", [=] { std::memset(o.out, o.value, Bytes(o)); });
  };
  const auto fillWords = [](Contest& contest, const auto& o) {
    static_assert(sizeof(wchar_t) == sizeof(*o.out));
    contest.Peer("wmemset", [=] {
      std::wmemset(reinterpret_cast<wchar_t*>(o.out), std::bit_cast<wchar_t>(o.value),
                   static_cast<std::size_t>(o.len));
    });
  };
  memory.Add<Zov32f>(ROUTINE(zovsCopy_32f), kOneSource, copy);
  memory.Add<Zov64f>(ROUTINE(zovsCopy_64f), kOneSource, copy);
  memory.Add<Zov8u>(ROUTINE(zovsSet_8u), kFill, fillBytes);
  memory.Add<Zov32s>(ROUTINE(zovsSet_32s), kFill, fillWords);
  memory.Add<Zov32f>(ROUTINE(zovsSet_32f), kFill, fillWords);
  memory.Add<Zov32f>(ROUTINE(zovsZero_32f), kInPlace, clear);
  memory.Add<Zov64f>(ROUTINE(zovsZero_64f), kInPlace, clear);
}

void AddArithmeticCases(Cases& cases) {
  const Family arithmetic = {cases, "arithmetic", "Melem/s", Sizes(256, 16 << 20, 4)};

  // In place, VOLK's kernels take the destination for a source too.
  const auto two = [](auto f, const auto& o) { f(o.out, o.a, o.b, unsigned(o.len)); };
  const auto twoInPlace = [](auto f, const auto& o) { f(o.out, o.out, o.a, unsigned(o.len)); };
  const auto constant = [](auto f, const auto& o) { f(o.out, o.a, o.value, unsigned(o.len)); };
  const auto constantInPlace = [](auto f, const auto& o) {
    f(o.out, o.out, o.value, unsigned(o.len));
  };
  const auto square = [](auto f, const auto& o) { f(o.out, o.out, o.out, unsigned(o.len)); };
  const auto one = [](auto f, const auto& o) { f(o.out, o.a, unsigned(o.len)); };

  arithmetic.Add<Zov32f>(ROUTINE(zovsAdd_32f), kTwoSources, WithVolk(VOLK(add), two));
  arithmetic.Add<Zov32f>(ROUTINE(zovsAdd_32f_I), kTwoSourcesInPlace,
                         WithVolk(VOLK(add), twoInPlace));
  arithmetic.Add<Zov32f>(ROUTINE(zovsAddC_32f), kConstant, WithVolk(VOLK(addConstant), constant));
  arithmetic.Add<Zov32f>(ROUTINE(zovsAddC_32f_I), kConstantInPlace,
                         WithVolk(VOLK(addConstant), constantInPlace));
  arithmetic.Add<Zov64f>(ROUTINE(zovsAddC_64f_I), kConstantInPlace);
  arithmetic.Add<Zov32f>(ROUTINE(zovsSub_32f), kTwoSources, WithVolk(VOLK(subtract), two));
  arithmetic.Add<Zov32f>(ROUTINE(zovsSub_32f_I), kTwoSourcesInPlace,
                         WithVolk(VOLK(subtract), twoInPlace));
  arithmetic.Add<Zov32f>(ROUTINE(zovsSubC_32f), kConstant, WithVolk(VOLK(addConstant), constant));
  arithmetic.Add<Zov32f>(ROUTINE(zovsSubC_32f_I), kConstantInPlace,
                         WithVolk(VOLK(addConstant), constantInPlace));
  arithmetic.Add<Zov32f>(ROUTINE(zovsSubCRev_32f), kConstant);
  arithmetic.Add<Zov32f>(ROUTINE(zovsMul_32f), kTwoSources, WithVolk(VOLK(multiply), two));
  arithmetic.Add<Zov32f>(ROUTINE(zovsMul_32f_I), kTwoSourcesInPlace,
                         WithVolk(VOLK(multiply), twoInPlace), Data::units);
  arithmetic.Add<Zov64f>(ROUTINE(zovsMul_64f_I), kTwoSourcesInPlace,
                         WithVolk(VOLK(multiply64f), twoInPlace), Data::units);
  arithmetic.Add<Zov64fc>(ROUTINE(zovsMul_64fc), kTwoSources);
  arithmetic.Add<Zov32f>(ROUTINE(zovsMulC_32f), kConstant,
                         WithVolk(VOLK(multiplyConstant), constant));
  arithmetic.Add<Zov32f>(ROUTINE(zovsMulC_32f_I), kConstantInPlace,
                         WithVolk(VOLK(multiplyConstant), constantInPlace));
  arithmetic.Add<Zov64f>(ROUTINE(zovsMulC_64f_I), kConstantInPlace);
  arithmetic.Add<Zov32f>(ROUTINE(zovsDiv_32f), kTwoSources, WithVolk(VOLK(divide), two));
  arithmetic.Add<Zov32f>(ROUTINE(zovsDivC_32f), kConstant,
                         WithVolk(VOLK(multiplyConstant), constant));
  arithmetic.Add<Zov32f>(ROUTINE(zovsDivC_32f_I), kConstantInPlace,
                         WithVolk(VOLK(multiplyConstant), constantInPlace));
  arithmetic.Add<Zov32f>(ROUTINE(zovsDivCRev_32f), kConstant);
  arithmetic.Add<Zov32f>(ROUTINE(zovsDivCRev_32f_I), kConstantInPlace);
  arithmetic.Add<Zov32f>(ROUTINE(zovsAbs_32f), kOneSource);
  arithmetic.Add<Zov32f>(ROUTINE(zovsAbs_32f_I), kInPlace);
  arithmetic.Add<Zov32f>(ROUTINE(zovsSqr_32f_I), kInPlace, WithVolk(VOLK(multiply), square),
                         Data::units);
  arithmetic.Add<Zov32f>(ROUTINE(zovsSqrt_32f), kOneSource, WithVolk(VOLK(squareRoot), one));
  arithmetic.Add<Zov32fc, Zov32f>(ROUTINE(zovsMagnitude_32fc), kOneSource,
                                  WithVolk(VOLK(magnitude32fc), one));
  arithmetic.Add<Zov64fc, Zov64f>(ROUTINE(zovsMagnitude_64fc), kOneSource);
  arithmetic.Add<Zov16sc, Zov16s>(ROUTINE(zovsMagnitude_16sc_Sfs), kScaled,
                                  WithVolk(VOLK(magnitude16sc), one));
  arithmetic.Add<Zov32fc, Zov32f>(ROUTINE(zovsPhase_32fc), kOneSource);
}

namespace {

// A search that fails up to the last position, where the sequence stands.
template <class T, class Function, class Library>
void AddFind(Cases& cases, const Routine<Function>& routine, std::size_t bytes, int lenFind,
             Library library) {
  const std::size_t count = bytes / sizeof(T);
  const auto setUp = [=](Contest& contest) {
    T* const text = contest.Array<T>(count);
    T* const find = contest.Array<T>(64);
    FillRandom(text, count);
    const std::size_t last = count - static_cast<std::size_t>(lenFind);
    std::memcpy(find, text + last, static_cast<std::size_t>(lenFind) * sizeof(T));
    T absent = 0;
    while (std::find(find, find + lenFind, absent) != find + lenFind) ++absent;
    for (std::size_t i = 0; i < last; ++i) {
      if (std::equal(find, find + lenFind, text + i)) text[i] = absent;
    }
    int* const index = contest.Array<int>(1);
    const int len = static_cast<int>(count);
    const auto search = [=](auto f) { return f(text, len, find, lenFind, index); };
    contest.Ours([=, f = routine.entry] { return search(f); });
    contest.Peer("plain loop", [=, f = routine.plain[contest.level()]] { return search(f); });
    library(contest, text, count, find, lenFind);
  };
  cases.push_back({"search", std::string(routine.name) + " " + std::to_string(lenFind),
                   BytesLabel(bytes), "GB/s", static_cast<double>(bytes), setUp});
}

}  // namespace

void AddSearchCases(Cases& cases) {
  const auto memoryFind = [](Contest& contest, const Zov8u* text, std::size_t count,
                             const Zov8u* find, int lenFind) {
    contest.Peer("memmem", [=] {
      benchmark::DoNotOptimize(memmem(text, count, find, static_cast<std::size_t>(lenFind)));
    });
  };
  const auto none = [](auto&&...) {};
  for (const int lenFind : {1, 2, 3, 4, 8, 16, 64}) {
    for (const std::size_t bytes : Sizes(4096, 1 << 20, 16)) {
      AddFind<Zov8u>(cases, ROUTINE(zovsFind_8u), bytes, lenFind, memoryFind);
    }
  }
  for (const int lenFind : {1, 2, 4, 16}) {
    for (const std::size_t bytes : Sizes(4096, 1 << 20, 16)) {
      AddFind<Zov16u>(cases, ROUTINE(zovsFind_16u), bytes, lenFind, none);
    }
  }

  const Family thresholds = {cases, "search", "Melem/s", Sizes(1024, 4 << 20, 8)};
  const Nothing noMore;
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_32f_I), kLimit<ZOV_CMP_LESS>, noMore, Data::positive,
                         " less");
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_32f_I), kLimit<ZOV_CMP_GREATER>, noMore,
                         Data::positive, " greater");
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_GTVal_32f), kThreshold);
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_GTVal_32f_I), kThresholdInPlace);
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_LTVal_32f), kThreshold);
  thresholds.Add<Zov32f>(ROUTINE(zovsThreshold_LTVal_32f_I), kThresholdInPlace);
  thresholds.Add<Zov16u>(ROUTINE(zovsReplaceC_16u), kReplace);
}

namespace {

// OpenCV's form of a member; in place, the destination is the first source.
#if KELOZOV_BENCH_OPENCV
#define OPENCV(operation) OpenCvOperation::operation
auto WithOpenCv(OpenCvOperation operation, bool inPlace = true) {
  return [=](Contest& contest, const auto& o) {
    using T = std::remove_reference_t<decltype(*o.out)>;
    const int depth = static_cast<int>(8 * sizeof(T)) * (std::is_signed_v<T> ? -1 : 1);
    AddOpenCvInteger(contest, operation, depth, inPlace ? o.out : o.a, inPlace ? o.a : o.b, o.value,
                     o.out, o.len);
  };
}
#else
#define OPENCV(operation) 0
Nothing WithOpenCv(int, bool = true) { return {}; }
#endif

}  // namespace

void AddIntegerCases(Cases& cases) {
  const Family integer = {cases, "integer", "Melem/s", Sizes(1024, 512 << 10, 8)};
  // A scale factor takes one of three kernels, by its sign.
  const auto two = []<int f>(std::integral_constant<int, f>) {
    return [](auto g, const auto& o) { return g(o.a, o.b, o.out, o.len, f); };
  };
  const auto twoInPlace = []<int f>(std::integral_constant<int, f>) {
    return [](auto g, const auto& o) { return g(o.a, o.out, o.len, f); };
  };
  const auto constant = []<int f>(std::integral_constant<int, f>) {
    return [](auto g, const auto& o) { return g(o.value, o.out, o.len, f); };
  };
  const std::integral_constant<int, 0> same;
  const std::integral_constant<int, 3> down;
  const std::integral_constant<int, -3> up;
  const auto add = WithOpenCv(OPENCV(add));
  const auto addConstant = WithOpenCv(OPENCV(addConstant));
  const auto subtract = WithOpenCv(OPENCV(subtractConstant));
  const Nothing none;
  const Data any = Data::positive;

  integer.Add<Zov16s>(ROUTINE(zovsAdd_16s_Sfs), two(same), WithOpenCv(OPENCV(add), false));
  integer.Add<Zov16s>(ROUTINE(zovsAdd_16s_Sfs), two(down), none, any, " down");
  integer.Add<Zov16s>(ROUTINE(zovsAdd_16s_Sfs), two(up), none, any, " up");
  integer.Add<Zov16s>(ROUTINE(zovsAdd_16s_I), kTwoSourcesInPlace, add);
  integer.Add<Zov16u>(ROUTINE(zovsAdd_16u_ISfs), twoInPlace(same), add);
  integer.Add<Zov16u>(ROUTINE(zovsAdd_16u_ISfs), twoInPlace(down), none, any, " down");
  integer.Add<Zov16u>(ROUTINE(zovsAdd_16u_ISfs), twoInPlace(up), none, any, " up");
  integer.Add<Zov16u>(ROUTINE(zovsAddC_16u_ISfs), constant(same), addConstant);
  integer.Add<Zov16u>(ROUTINE(zovsAddC_16u_ISfs), constant(down), none, any, " down");
  integer.Add<Zov16u>(ROUTINE(zovsSubC_16u_ISfs), constant(same), subtract);
  integer.Add<Zov16u>(ROUTINE(zovsSubC_16u_ISfs), constant(down), none, any, " down");
  integer.Add<Zov16s>(ROUTINE(zovsSubC_16s_I), kConstantInPlace, subtract);
  integer.Add<Zov16s>(ROUTINE(zovsMulC_16s_I), kConstantInPlace,
                      WithOpenCv(OPENCV(multiplyConstant)));
  integer.Add<Zov32s>(ROUTINE(zovsAbs_32s_I), kInPlace);

  const auto openCvOr = WithOpenCv(OPENCV(bitOr));
  // VOLK has it for elements of 32 bits.
  const auto volkOr = WithVolk(
      VOLK(bitOr), [](auto f, const auto& o) { f(o.out, o.out, o.a, unsigned(o.len) / 2); });
  const auto bitOr = [=](Contest& contest, const auto& o) {
    openCvOr(contest, o);
    volkOr(contest, o);
  };
  integer.Add<Zov16u>(ROUTINE(zovsAndC_16u), kConstant, WithOpenCv(OPENCV(andConstant), false));
  integer.Add<Zov16u>(ROUTINE(zovsAndC_16u_I), kConstantInPlace, WithOpenCv(OPENCV(andConstant)));
  integer.Add<Zov16u>(ROUTINE(zovsOr_16u_I), kTwoSourcesInPlace, bitOr);
  const auto shiftInPlace = [](auto f, const auto& o) { return f(3, o.out, o.len); };
  integer.Add<Zov16u>(ROUTINE(zovsLShiftC_16u),
                      [](auto f, const auto& o) { return f(o.a, 3, o.out, o.len); });
  integer.Add<Zov16u>(ROUTINE(zovsLShiftC_16u_I), shiftInPlace);
  integer.Add<Zov16u>(ROUTINE(zovsRShiftC_16u_I), shiftInPlace);

  integer.Add<Zov32f>(ROUTINE(zovsCeil_32f), kOneSource);
  integer.Add<Zov32f>(ROUTINE(zovsFloor_32f), kOneSource);
}

}  // namespace zov::bench
