/**
    Least squares of a straight line through points that come one by one.
*/
#pragma once

#include <cstdint>

namespace ambrel::measures
{

class LineFit
{
public:
    void add(double x, double y)
    {
        ++count;
        const auto n = static_cast<double>(count);
        const double fromMeanX = x - meanX;
        meanX += fromMeanX / n;
        meanY += (y - meanY) / n;
        spreadX += fromMeanX * (x - meanX);
        covariance += fromMeanX * (y - meanY);
    }

    std::int64_t getCount() const { return count; }
    double getSlope() const { return spreadX > 0.0 ? covariance / spreadX : 0.0; }
    double getValueAt(double x) const { return meanY + getSlope() * (x - meanX); }

private:
    std::int64_t count = 0;
    double meanX = 0.0;
    double meanY = 0.0;
    double spreadX = 0.0;
    double covariance = 0.0;
};

} // namespace ambrel::measures
