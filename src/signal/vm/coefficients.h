// Polynomial coefficients, constant term first, made by
// scripts/vm_coefficients.py. The figure after each comment is the relative
// error of the fit in bits, rounding apart.
#pragma once

#include "core/level.h"

namespace zov::ZOV_LEVEL_NAMESPACE {

// 2^f = 1 + f P(f), |f| <= 1/2; 13.3
constexpr float kExp2A11[] = {0x1.62f5fap-1F, 0x1.f00c42p-3F, 0x1.c2a22p-5F};
// 2^f = 1 + f P(f), |f| <= 1/2; 28.9
constexpr double kExp2A24[] = {0x1.62e430af2a852p-1, 0x1.ebfbdc3c44cd7p-3,  0x1.c6aee88c3e17fp-5,
                               0x1.3b2d4cca2339cp-7, 0x1.5f3e5392b88a3p-10, 0x1.41fbde7a8c4ep-13};
// e^r = 1 + r P(r), |r| <= ln 2 / 2; 23.4
constexpr float kExpA21[] = {0x1.fffff6p-1F, 0x1.fffdc6p-2F, 0x1.555a6ap-3F, 0x1.573a52p-5F,
                             0x1.0fa83ap-7F};
// ln(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 14.3
constexpr float kLnA11[] = {0x1.fffb92p-1F, -0x1.ff7p-2F, 0x1.587658p-2F, -0x1.1572aap-2F,
                            0x1.69a236p-3F};
// ln(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 25.2
constexpr float kLnA21[] = {0x1p+0F,        -0x1.fffff8p-2F, 0x1.555792p-2F,
                            -0x1.00057p-2F, 0x1.98b74ap-3F,  -0x1.5332a6p-3F,
                            0x1.3238e8p-3F, -0x1.263b94p-3F, 0x1.654496p-4F};
// ln(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 35.8
constexpr double kLnA24[] = {0x1.ffffffffe11fbp-1,  -0x1.0000000286c08p-1, 0x1.5555560132dc6p-2,
                             -0x1.fffff80e326c1p-3, 0x1.9998fa13592c3p-3,  -0x1.5556c8b99e6d2p-3,
                             0x1.24adedf198dp-3,    -0x1.ffe5a21d3f853p-4, 0x1.c2c4ac417f4ebp-4,
                             -0x1.96709c1c1d175p-4, 0x1.9af5ab95e6306p-4,  -0x1.958a21f7536fap-4,
                             0x1.b7546b8de9c47p-5};
// log10(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 14.3
constexpr float kLog10A11[] = {0x1.bcb3d8p-2F, -0x1.bc3a9ep-3F, 0x1.2b3236p-3F, -0x1.e1f9f2p-4F,
                               0x1.3a1c6ap-4F};
// log10(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 25.2
constexpr float kLog10A21[] = {0x1.bcb7bp-2F,   -0x1.bcb7aap-3F, 0x1.287c68p-3F,
                               -0x1.bcc124p-4F, 0x1.630194p-4F,  -0x1.269f9ep-4F,
                               0x1.09fb36p-4F,  -0x1.ff2274p-5F, 0x1.3651a8p-5F};
// log10(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 35.8
constexpr double kLog10A24[] = {0x1.bcb7b152537f5p-2,  -0x1.bcb7b156d1d6dp-3, 0x1.287a76cc3bfa4p-3,
                                -0x1.bcb7aa6be45d4p-4, 0x1.63c59ce57d73p-4,   -0x1.287bb8cd2a90ap-4,
                                0x1.fc6fabbe9c168p-5,  -0x1.bca0ca721b26fp-5, 0x1.878846c9edfafp-5,
                                -0x1.610779638ad9bp-5, 0x1.64f47beee9674p-5,  -0x1.603f48c7297f5p-5,
                                0x1.7d98d418ec4dcp-6};
// log2(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2); 19.8
constexpr float kLog2A11[] = {0x1.71548ep+0F, -0x1.715692p-1F, 0x1.ec296cp-2F, -0x1.6fff2p-2F,
                              0x1.2ecbecp-2F, -0x1.13c898p-2F, 0x1.5f7bfep-3F};
// log2(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2): the first terms; 35.8
constexpr double kLog2A24[] = {0x1.71547652a1ea2p+0,  -0x1.715476565d40cp-1, 0x1.ec709ebb9343ap-2,
                               -0x1.71547097a4051p-2, 0x1.277651fc676ccp-2,  -0x1.ec72b591b62b5p-3};
// log2(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2): the others; 35.8
constexpr float kLog2TailA24[] = {0x1.a63f44p-3F, -0x1.714172p-3F, 0x1.45291ap-3F, -0x1.252f34p-3F,
                                  0x1.2871dap-3F, -0x1.2488f4p-3F, 0x1.3ce8dp-4F};
// sin(r) = r P(r^2), |r| <= pi/2, exact at the ends; 12.9
constexpr float kSinA11[] = {0x1.ffeedap-1F, -0x1.53b29p-3F, 0x1.ef514cp-8F};
// sin(r) = r P(r^2), |r| <= pi/2; 35.5
constexpr double kSinA24[] = {0x1.ffffffffd17b5p-1,  -0x1.55555541758ccp-3,
                              0x1.11110b74acb5bp-7,  -0x1.a017a8fdf709ap-13,
                              0x1.716ba4fc73ba5p-19, -0x1.9a0e191f050dbp-26};
// tan(r) = r + r^3 P(r^2), |r| <= pi/4; 14.3
constexpr float kTanA11[] = {0x1.57002ap-2F, 0x1.e39a08p-4F, 0x1.797364p-4F};
// sin(r) = r P(r^2), |r| <= pi/4; 37.7
constexpr double kSinQuarterA24[] = {0x1.fffffffff5fe6p-1, -0x1.55555548e333dp-3,
                                     0x1.111107185fee5p-7, -0x1.a00ec70da4ea4p-13,
                                     0x1.6cb0a590e67eep-19};
// cos(r) = P(r^2), |r| <= pi/4; 43.8
constexpr double kCosQuarterA24[] = {0x1.ffffffffffdb1p-1,  -0x1.ffffffffdff26p-2,
                                     0x1.555555430e70fp-5,  -0x1.6c16b209af97bp-10,
                                     0x1.a00e39881ba71p-16, -0x1.23b6c3930f8d7p-22};
// asin(x) = pi/2 - sqrt(1 - x) P(x), 1/48 <= x <= 1; 13.1
constexpr float kAsinA11[] = {0x1.921ebcp+0F, -0x1.b5f5cep-3F, 0x1.4bd7c2p-4F, -0x1.9517b4p-6F};
// asin(w) = w + w^3 P(w^2), |w| <= 1/2; 39.9
constexpr double kAsinA24[] = {0x1.55555547deb8bp-3, 0x1.333340871c0afp-4, 0x1.6db25cf60ff45p-5,
                               0x1.f2819cc3b2575p-6, 0x1.6643ee37101f1p-6, 0x1.522e4da7907c9p-6,
                               0x1.054c25ab8f4f2p-9, 0x1.0d7c8916da2cep-5};
// acos(x) = sqrt(1 - x) P(x), 0 <= x <= 1, exact at zero; 14.2
constexpr float kAcosA11[] = {0x1.921fb6p+0F, -0x1.b38d8cp-3F, 0x1.34c6a6p-4F, -0x1.3d65d2p-6F};
// atan(z) = z + z^3 P(z^2), |z| <= 1; 14.8
constexpr float kAtanA11[] = {-0x1.541a14p-2F, 0x1.7e987ep-3F, -0x1.816d1ep-4F, 0x1.96fc5ap-6F};
// atan(z) = z + z^3 P(z^2), |z| <= 1; 36.5
constexpr double kAtanA24[] = {-0x1.5555552f26a8p-2,  0x1.9999846bf6097p-3,  -0x1.2490391cf7336p-3,
                               0x1.c6e85a7bf8fep-4,   -0x1.72d62e78e9041p-4, 0x1.33a16689e52dbp-4,
                               -0x1.f02f7f3dcef9fp-5, 0x1.69ea2aca5b5ddp-5,  -0x1.b2f531fa5e52ap-6,
                               0x1.81f6140ef679cp-7,  -0x1.b401e33e32457p-9, 0x1.ce1904ac401f9p-12};
// even part of 2^f, |f| <= 1/2, exact at zero; 13.3
constexpr float kExp2EvenA11[] = {0x1p+0F, 0x1.f00eb8p-3F};
// odd part of 2^f over f, |f| <= 1/2; 16.0
constexpr float kExp2OddA11[] = {0x1.62e2d4p-1F, 0x1.c96bdep-5F};
// even part of 2^f, |f| <= 1/2, exact at zero; 45.9
constexpr double kExp2EvenA24[] = {0x1p+0, 0x1.ebfbdff81bb32p-3, 0x1.3b2ab7245b7ffp-7,
                                   0x1.4308977030d05p-13, 0x1.63e721b506159p-20};
// odd part of 2^f over f, |f| <= 1/2; 49.5
constexpr double kExp2OddA24[] = {0x1.62e42fefa39f7p-1, 0x1.c6b08d70441aep-5, 0x1.5d87fe907823fp-10,
                                  0x1.ffcb76c39be1bp-17, 0x1.b656d2c30c103p-24};
// tanh(x) = x P(x^2) / Q(x^2), |x| <= 5.2: P; 13.9
constexpr float kTanhTopA11[] = {0x1.fff788p-1F, 0x1.a0f3a8p-4F, 0x1.559ccap-11F};
// tanh(x) = x P(x^2) / Q(x^2), |x| <= 5.2: Q; 13.9
constexpr float kTanhBottomA11[] = {0x1p+0F, 0x1.bd2d92p-2F, 0x1.9ddc44p-7F};

}  // namespace zov::ZOV_LEVEL_NAMESPACE
