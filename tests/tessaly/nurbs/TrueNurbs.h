#ifndef TESTS_TESSALY_NURBS_TRUENURBS_H
#define TESTS_TESSALY_NURBS_TRUENURBS_H

/// \file
/// NURBS as the textbooks have them, in double and by plain recursion: what the tessellation is held against.

#include <array>
#include <cmath>
#include <vector>

namespace nurbs_test
{

typedef std::array<double, 3> Place;
typedef std::array<double, 4> Weighted; ///< x, y, z times the weight, and the weight

inline Place minus(const Place &a, const Place &b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline double dot(const Place &a, const Place &b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
inline double length(const Place &a) { return std::sqrt(dot(a, a)); }
inline Place cross(const Place &a, const Place &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// Knots of one direction. The last span belongs to the end of the domain, too.
struct Knots
{
    std::vector<double> values;
    int order = 2;

    int points() const { return int(values.size()) - order; }
    double first() const { return values[std::size_t(order - 1)]; }
    double last() const { return values[std::size_t(points())]; }

    /// The span [i, i + 1) that t lies in.
    int span(double t) const
    {
        int i = order - 1;
        while(i + 1 < points() && t >= values[std::size_t(i + 1)])
            ++i;
        return i;
    }
    /// Cox and de Boor's recursion for the basis function i of order k, in that span.
    double basis(int i, int k, double t, int inSpan) const
    {
        if(k == 1)
            return i == inSpan ? 1.0 : 0.0;
        return ratio(t - at(i), at(i + k - 1) - at(i)) * basis(i, k - 1, t, inSpan) +
               ratio(at(i + k) - t, at(i + k) - at(i + 1)) * basis(i + 1, k - 1, t, inSpan);
    }
    double slope(int i, double t, int inSpan) const
    {
        return (order - 1) * (ratio(1, at(i + order - 1) - at(i)) * basis(i, order - 1, t, inSpan) -
                              ratio(1, at(i + order) - at(i + 1)) * basis(i + 1, order - 1, t, inSpan));
    }
    /// Control values that make the spline the parameter itself.
    double greville(int i) const
    {
        double sum = 0;
        for(int k = 1; k < order; ++k)
            sum += at(i + k);
        return sum / (order - 1);
    }

  private:
    double at(int i) const { return values[std::size_t(i)]; }
    static double ratio(double a, double b) { return b == 0 ? 0 : a / b; }
};

struct TrueCurve
{
    Knots knots;
    std::vector<Weighted> points;

    Place at(double t) const
    {
        Weighted sum = {0, 0, 0, 0};
        const int span = knots.span(t);
        for(int i = span - knots.order + 1; i <= span; ++i)
            for(std::size_t c = 0; c < 4; ++c)
                sum[c] += knots.basis(i, knots.order, t, span) * points[std::size_t(i)][c];
        return {sum[0] / sum[3], sum[1] / sum[3], sum[2] / sum[3]};
    }

    /// The parameter of the curve's point next to `p`: the best of many samples, and from there by thirds.
    double nearest(const Place &p) const
    {
        const int samples = 600;
        const double step = (knots.last() - knots.first()) / samples;
        double best = knots.first();
        for(int i = 0; i <= samples; ++i)
        {
            const double t = knots.first() + i * step;
            if(length(minus(at(t), p)) < length(minus(at(best), p)))
                best = t;
        }
        double low = std::max(knots.first(), best - step);
        double high = std::min(knots.last(), best + step);
        for(int i = 0; i < 60; ++i)
        {
            const double a = low + (high - low) / 3;
            const double b = high - (high - low) / 3;
            if(length(minus(at(a), p)) < length(minus(at(b), p)))
                high = b;
            else
                low = a;
        }
        return (low + high) / 2;
    }
};

struct TrueSurface
{
    Knots u;
    Knots v;
    std::vector<Weighted> points; ///< u fastest

    /// The point and the derivatives along u and v.
    void at(double s, double t, Place &point, Place &alongU, Place &alongV) const
    {
        Weighted sum = {0, 0, 0, 0};
        Weighted du = {0, 0, 0, 0};
        Weighted dv = {0, 0, 0, 0};
        const int uSpan = u.span(s);
        const int vSpan = v.span(t);
        for(int j = vSpan - v.order + 1; j <= vSpan; ++j)
        {
            const double bv = v.basis(j, v.order, t, vSpan);
            const double sv = v.slope(j, t, vSpan);
            for(int i = uSpan - u.order + 1; i <= uSpan; ++i)
            {
                const double bu = u.basis(i, u.order, s, uSpan);
                const double su = u.slope(i, s, uSpan);
                const Weighted &p = points[std::size_t(j * u.points() + i)];
                for(std::size_t c = 0; c < 4; ++c)
                {
                    sum[c] += bu * bv * p[c];
                    du[c] += su * bv * p[c];
                    dv[c] += bu * sv * p[c];
                }
            }
        }
        for(std::size_t c = 0; c < 3; ++c)
        {
            point[c] = sum[c] / sum[3];
            alongU[c] = (du[c] - point[c] * du[3]) / sum[3];
            alongV[c] = (dv[c] - point[c] * dv[3]) / sum[3];
        }
    }
};

/// The largest extent of the points.
inline double sizeOf(const std::vector<Weighted> &points)
{
    double size = 0;
    for(const Weighted &a : points)
        for(const Weighted &b : points)
            size = std::max(size, length({a[0] / a[3] - b[0] / b[3], a[1] / a[3] - b[1] / b[3], a[2] / a[3] - b[2] / b[3]}));
    return size;
}

} // namespace nurbs_test

#endif
