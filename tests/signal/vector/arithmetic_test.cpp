// Floating-point arithmetic: every member over lengths, alignments and aliasing, then the special
// cases of each.
#include <cmath>

#include "signal/vector/elementwise_walk.h"

namespace zov::test {
namespace {

template <class T>
Member Binary(const char* name, std::function<ZovStatus(int, const T*, const T*, T*, int)> call,
              std::function<T(T, T)> reference) {
  return MemberOf(Elementwise<T, T, T>{name, false, call, reference, {AnyNumber<T>, AnyNumber<T>}});
}
template <class T>
Member BinaryInPlace(const char* name, std::function<ZovStatus(int, const T*, T*, int)> call,
                     std::function<T(T, T)> reference) {
  return MemberOf(Elementwise<T, T, T>{
      name,
      true,
      [=](int level, const T* a, const T*, T* b, int len) { return call(level, a, b, len); },
      reference,
      {AnyNumber<T>, AnyNumber<T>}});
}
template <class T>
Member Unary(const char* name, std::function<ZovStatus(int, const T*, T*, int)> call,
             std::function<T(T)> reference) {
  return MemberOf(Elementwise<T, T>{name, false, call, reference, {AnyNumber<T>}});
}
template <class T>
Member InPlace(const char* name, std::function<ZovStatus(int, T*, int)> call,
               std::function<T(T)> reference) {
  return MemberOf(
      Elementwise<T, T>{name,
                        true,
                        [=](int level, const T*, T* x, int len) { return call(level, x, len); },
                        reference,
                        {AnyNumber<T>}});
}

// ZOV_CALL(export, arguments that go before the arrays' own...)
#define ZOV_CALL(name) \
  [](int level, auto... arguments) { return ZOV_AT(level, name)(arguments...); }

// Sums and products of two floats are exact in double, or so close that one rounding decides.
float Round(double x) { return static_cast<float>(x); }

const Member kArithmetic[] = {
    Binary<float>("Add_32f", ZOV_CALL(zovsAdd_32f),
                  [](double a, double b) { return Round(a + b); }),
    BinaryInPlace<float>("Add_32f_I", ZOV_CALL(zovsAdd_32f_I),
                         [](double a, double b) { return Round(a + b); }),
    Binary<float>("Sub_32f", ZOV_CALL(zovsSub_32f),
                  [](double a, double b) { return Round(b - a); }),
    BinaryInPlace<float>("Sub_32f_I", ZOV_CALL(zovsSub_32f_I),
                         [](double a, double b) { return Round(b - a); }),
    Binary<float>("Mul_32f", ZOV_CALL(zovsMul_32f),
                  [](double a, double b) { return Round(a * b); }),
    BinaryInPlace<float>("Mul_32f_I", ZOV_CALL(zovsMul_32f_I),
                         [](double a, double b) { return Round(a * b); }),
    BinaryInPlace<double>("Mul_64f_I", ZOV_CALL(zovsMul_64f_I),
                          [](double a, double b) { return a * b; }),
    Unary<float>("Abs_32f", ZOV_CALL(zovsAbs_32f), [](float a) { return std::fabs(a); }),
    InPlace<float>("Abs_32f_I", ZOV_CALL(zovsAbs_32f_I), [](float a) { return std::fabs(a); }),
    InPlace<float>("Sqr_32f_I", ZOV_CALL(zovsSqr_32f_I), [](double a) { return Round(a * a); }),
};

class Arithmetic : public ::testing::TestWithParam<Member> {};
TEST_P(Arithmetic, LengthsAlignmentsAndAliases) { GetParam().walk(); }
TEST_P(Arithmetic, StatusesInOrder) { GetParam().statuses(); }
INSTANTIATE_TEST_SUITE_P(Members, Arithmetic, ::testing::ValuesIn(kArithmetic),
                         [](const auto& param) { return param.param.name; });

}  // namespace
}  // namespace zov::test
