#!/usr/bin/env python3
"""Derives the polynomials and tables of src/signal/vm: prints src/signal/vm/coefficients.h, or with
--tables src/signal/vm/tables.inc. Needs mpmath.

Each polynomial is the minimax fit of P(x) to g(x) under a weight, by exchange on a fine grid. Where
a kernel must be exact at a point, the fit is P(x) = v + (x - x0) Q(x).
"""
import struct
import sys

from mpmath import (acos, asin, atan, cos, cosh, exp, log, lu_solve, matrix, mp, mpf, pi, sin, sinh,
                    sqrt, tan, tanh)

mp.dps = 40
LN2 = log(mpf(2))


def chebyshev_grid(a, b, count):
    return [(a + b) / 2 - (b - a) / 2 * cos(pi * (i + mpf(1) / 2) / count) for i in range(count)]


def minimax(g, weight, a, b, degree, basis=None):
    """Coefficients, constant first, that minimise max |weight (P - g)| on [a, b]; and that error."""
    a, b = mpf(a), mpf(b)
    basis = basis or [lambda x, k=k: x**k for k in range(degree + 1)]
    count = len(basis)
    grid = chebyshev_grid(a, b, 60 * (count + 1))
    rows = [[phi(x) for phi in basis] for x in grid]
    want = [g(x) for x in grid]
    weights = [weight(x) for x in grid]
    picks = [int((i + 0.5) * len(grid) / (count + 1)) for i in range(count + 1)]
    best = None
    for _ in range(40):
        lhs, rhs = matrix(count + 1, count + 1), matrix(count + 1, 1)
        for row, i in enumerate(picks):
            for k in range(count):
                lhs[row, k] = rows[i][k]
            lhs[row, count] = (-1)**row / weights[i]
            rhs[row] = want[i]
        solution = lu_solve(lhs, rhs)
        c = [solution[k] for k in range(count)]
        errors = [w * (sum(ck * phi for ck, phi in zip(c, row)) - v)
                  for w, row, v in zip(weights, rows, want)]
        worst = max(abs(e) for e in errors)
        if best is None or worst < best[1]:
            best = (c, worst)
        if worst < abs(solution[count]) * mpf("1.0005"):
            break
        # Extremes of each run of one sign; the count + 1 neighbours that hold the largest.
        runs = []
        for i, e in enumerate(errors):
            if runs and (errors[runs[-1]] > 0) == (e > 0):
                if abs(e) > abs(errors[runs[-1]]):
                    runs[-1] = i
            else:
                runs.append(i)
        while len(runs) > count + 1:
            runs.pop(0 if abs(errors[runs[0]]) < abs(errors[runs[-1]]) else -1)
        if len(runs) < count + 1:
            break
        picks = runs
    return best


def through(g, weight, a, b, degree, x0, value):
    """As minimax, with P(x0) = value exactly."""
    c, worst = minimax(lambda x: (g(x) - value) / (x - x0), lambda x: weight(x) * abs(x - x0), a, b,
                       degree - 1)
    p = [mpf(0)] * (degree + 1)
    for k, ck in enumerate(c):
        p[k + 1] += ck
        p[k] -= x0 * ck
    p[0] += value
    return p, worst


def of_square(f):
    """g(s) with g(x^2) = f(x) / x for an odd f with slope 1."""
    return lambda s: f(sqrt(s)) / sqrt(s) if s > 0 else mpf(1)


def rest_of_square(f):
    """h(s) with f(x) = x + x s h(s), s = x^2."""
    g = of_square(f)
    return lambda s: (g(s) - 1) / s


def rest_weight(f):
    g = of_square(f)
    return lambda s: s / g(s)


def exp2_rest(f):
    return (exp(f * LN2) - 1) / f


def log_ratio(r):
    return log(1 + r) / r


def rational(g, weight, a, b, top, bottom):
    """Coefficients of P and Q, Q(0) = 1, that nearly minimise max |weight (P / Q - g)|."""
    q = [mpf(1)]
    for _ in range(12):
        last = lambda x, q=tuple(q): sum(qk * x**k for k, qk in enumerate(q))
        basis = [lambda x, k=k: x**k for k in range(top + 1)]
        basis += [lambda x, k=k: -g(x) * x**k for k in range(1, bottom + 1)]
        c, worst = minimax(g, lambda x: weight(x) / last(x), a, b, 0, basis)
        q = [mpf(1)] + c[top + 1:]
    return c[:top + 1], q, worst


FITS = []


def fit(name, comment, result, kind="float"):
    FITS.append((name, comment, result, kind))


def build():
    half = mpf(1) / 2
    low, high = sqrt(half) - 1, sqrt(mpf(2)) - 1
    exp_weight = lambda f: abs(f) / exp(f * LN2)
    log10e = 1 / log(mpf(10))
    log2e = 1 / LN2

    def log_fit(degree, scale):
        return minimax(lambda r: log_ratio(r) * scale, lambda r: 1 / (log_ratio(r) * scale), low, high,
                       degree)

    # 2^f = 1 + f P(f), |f| <= 1/2
    for name, degree, kind in (("Exp2A11", 2, "float"), ("Exp2A24", 5, "double")):
        fit(name, "2^f = 1 + f P(f), |f| <= 1/2", minimax(exp2_rest, exp_weight, -half, half, degree), kind)
    fit("ExpA21", "e^r = 1 + r P(r), |r| <= ln 2 / 2",
        minimax(lambda r: (exp(r) - 1) / r, lambda r: abs(r) / exp(r), -LN2 / 2, LN2 / 2, 4))
    # log(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2)
    for base, scale in (("Ln", mpf(1)), ("Log10", log10e)):
        text = "%s(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2)" % base.lower()
        fit(base + "A11", text, log_fit(4, scale))
        fit(base + "A21", text, log_fit(8, scale))
        fit(base + "A24", text, log_fit(12, scale), "double")
    fit("Log2A11", "log2(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2)", log_fit(6, log2e))
    c, worst = log_fit(12, log2e)
    text = "log2(1 + r) = r P(r), 1 + r from sqrt(1/2) to sqrt(2)"
    fit("Log2A24", text + ": the first terms", (c[:6], worst), "double")
    fit("Log2TailA24", text + ": the others", (c[6:], worst))
    # sin(r) = r P(r^2), |r| <= pi/2
    s = (pi / 2)**2
    sin_ratio = of_square(sin)
    weight = lambda x: 1 / sin_ratio(x)
    fit("SinA11", "sin(r) = r P(r^2), |r| <= pi/2, exact at the ends",
        through(sin_ratio, weight, 0, s * mpf("0.999999"), 2, s, 2 / pi))
    fit("SinA24", "sin(r) = r P(r^2), |r| <= pi/2", minimax(sin_ratio, weight, 0, s, 5), "double")
    # tan(r), |r| <= pi/4
    s = (pi / 4)**2 * mpf("1.00001")
    fit("TanA11", "tan(r) = r + r^3 P(r^2), |r| <= pi/4",
        minimax(rest_of_square(tan), rest_weight(tan), mpf(10)**-9, s, 2))
    fit("SinQuarterA24", "sin(r) = r P(r^2), |r| <= pi/4", minimax(sin_ratio, weight, 0, s, 4), "double")
    fit("CosQuarterA24", "cos(r) = P(r^2), |r| <= pi/4",
        minimax(lambda x: cos(sqrt(x)), lambda x: 1 / cos(sqrt(x)), 0, s, 5), "double")
    acos_ratio = lambda x: acos(x) / sqrt(1 - x) if x < 1 else sqrt(mpf(2))
    fit("AsinA11", "asin(x) = pi/2 - sqrt(1 - x) P(x), 1/48 <= x <= 1",
        minimax(acos_ratio, lambda x: sqrt(1 - x) / asin(x), mpf(1) / 48, 1 - mpf(10)**-12, 3))
    # argument up to 1/2
    fit("AsinA24", "asin(w) = w + w^3 P(w^2), |w| <= 1/2",
        minimax(rest_of_square(asin), rest_weight(asin), mpf(10)**-9, mpf(1) / 4, 7), "double")
    fit("AcosA11", "acos(x) = sqrt(1 - x) P(x), 0 <= x <= 1, exact at zero",
        through(acos_ratio, lambda x: 1 / acos_ratio(x), mpf(10)**-9, 1 - mpf(10)**-9, 3, mpf(0), pi / 2))
    # atan, argument up to 1
    for name, degree, kind in (("AtanA11", 3, "float"), ("AtanA24", 11, "double")):
        fit(name, "atan(z) = z + z^3 P(z^2), |z| <= 1",
            minimax(rest_of_square(atan), rest_weight(atan), mpf(10)**-9, mpf(1), degree), kind)
    # 2^f = E(f^2) + f O(f^2), |f| <= 1/2
    quarter = mpf(1) / 4
    even = lambda x: cosh(sqrt(x) * LN2)
    odd = lambda x: sinh(sqrt(x) * LN2) / sqrt(x) if x > 0 else LN2
    for name, degree, kind in (("A11", 1, "float"), ("A24", 4, "double")):
        fit("Exp2Even" + name, "even part of 2^f, |f| <= 1/2, exact at zero",
            through(even, lambda x: 1 / even(x), mpf(10)**-9, quarter, degree, mpf(0), mpf(1)), kind)
        fit("Exp2Odd" + name, "odd part of 2^f over f, |f| <= 1/2",
            minimax(odd, lambda x: 1 / odd(x), 0, quarter, degree), kind)
    # The fit ends on an extreme above 1, so that the limit at 1 makes all that follows exact.
    end = mpf("5.2")**2
    p, q, worst = rational(of_square(tanh), lambda x: 1 / of_square(tanh)(x), mpf(10)**-9, end, 2, 2)
    fit("TanhTopA11", "tanh(x) = x P(x^2) / Q(x^2), |x| <= 5.2: P", (p, worst))
    fit("TanhBottomA11", "tanh(x) = x P(x^2) / Q(x^2), |x| <= 5.2: Q", (q, worst))


def literal(value, kind):
    """A hexadecimal constant without idle digits."""
    rounded = float(value)
    if kind == "float":
        rounded = struct.unpack("f", struct.pack("f", rounded))[0]
    digits, exponent = rounded.hex().split("p")
    digits = digits.rstrip("0").rstrip(".") if "." in digits else digits
    return digits + "p" + exponent + ("F" if kind == "float" else "")


def print_coefficients():
    build()
    print("// Polynomial coefficients, constant term first, made by scripts/vm_coefficients.py. The")
    print("// figure after each comment is the relative error of the fit in bits, rounding apart.")
    print("#pragma once\n\n#include \"core/level.h\"\n")
    print("namespace zov::ZOV_LEVEL_NAMESPACE {\n")
    for name, comment, (c, worst), kind in FITS:
        bits = -log(worst) / LN2
        print("// %s; %.1f" % (comment, float(bits)))
        print("constexpr %s k%s[] = {%s};" % (kind, name, ", ".join(literal(x, kind) for x in c)))
    print("\n}  // namespace zov::ZOV_LEVEL_NAMESPACE")


def print_tables():
    """2^(i/128) as a rounded value and the relative rest."""
    for i in range(128):
        exact = mpf(2)**(mpf(i) / 128)
        high = mpf(struct.unpack("f", struct.pack("f", float(exact)))[0])
        print("{%s, %s}," % (literal(high, "float"), literal((exact - high) / high, "float")))


if __name__ == "__main__":
    print_tables() if "--tables" in sys.argv else print_coefficients()
