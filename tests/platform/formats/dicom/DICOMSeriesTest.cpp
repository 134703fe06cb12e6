#include <OSGDICOMElements.h>
#include <OSGDICOMSeries.h>

#include <gtest/gtest.h>

#include "DICOMFiles.h"

using namespace osg;

namespace
{

using Lines = std::vector<std::string>;
using Order = std::vector<std::size_t>;

/// An axial slice at that height.
DICOMFrame slice(double z, long number = 0, const std::string &series = "1.2.3")
{
    DICOMFrame frame;
    frame.series = series;
    frame.description = series == "1.2.3" ? "Thorax" : "Scout";
    frame.columns = frame.rows = 2;
    frame.hasPosition = true;
    frame.position[2] = z;
    frame.pixelSpacing[0] = 0.5;
    frame.pixelSpacing[1] = 0.75;
    frame.apart = 9.0;
    frame.number = number;
    return frame;
}

} // namespace

TEST(DICOMSeries, SlicesAreOrderedByTheirPlacesAndNotByTheirNumbers)
{
    const DICOMPlan plan = planDICOMVolume({slice(5, 1), slice(0, 2), slice(2.5, 3)}, "scan");
    EXPECT_EQ(plan.order, (Order{1, 2, 0}));
    EXPECT_TRUE(plan.hasSpacing);
    EXPECT_EQ(plan.spacing[0], 0.5f);
    EXPECT_EQ(plan.spacing[1], 0.75f);
    EXPECT_EQ(plan.spacing[2], 2.5f);
    EXPECT_EQ(plan.notices, Lines());
}

TEST(DICOMSeries, TheOrderFollowsTheNormalOfTheSlices)
{
    // Rows to the right of the head, columns to its front: the normal points down.
    std::vector<DICOMFrame> frames = {slice(0), slice(1), slice(2)};
    for(DICOMFrame &frame : frames)
        frame.down[1] = -1.0;
    EXPECT_EQ(planDICOMVolume(frames, "scan").order, (Order{2, 1, 0}));
    // Sagittal: along y and down -z, the normal is -x.
    frames = {slice(0), slice(0), slice(0)};
    for(std::size_t i = 0; i < 3; ++i)
    {
        const double across[3] = {0, 1, 0}, down[3] = {0, 0, -1};
        std::copy(across, across + 3, frames[i].across);
        std::copy(down, down + 3, frames[i].down);
        frames[i].position[0] = double(i) * 3.0;
    }
    const DICOMPlan plan = planDICOMVolume(frames, "scan");
    EXPECT_EQ(plan.order, (Order{2, 1, 0}));
    EXPECT_EQ(plan.spacing[2], 3.f);
}

TEST(DICOMSeries, OfSeveralSeriesTheLongestIsTakenAndNamed)
{
    const DICOMPlan plan = planDICOMVolume({slice(0, 1, "1.9"), slice(0), slice(1)}, "scan");
    EXPECT_EQ(plan.order, (Order{1, 2}));
    EXPECT_EQ(plan.notices, (Lines{"scan: holds 2 series, \"Thorax\" with 2 slices is taken"}));
}

TEST(DICOMSeries, SlicesOfAnotherSizeOrDirectionAreLeftOut)
{
    std::vector<DICOMFrame> frames = {slice(0), slice(1), slice(2), slice(3)};
    frames[0].columns = 4;
    frames[3].across[0] = 0.0;
    frames[3].across[2] = 1.0;
    const DICOMPlan plan = planDICOMVolume(frames, "scan");
    EXPECT_EQ(plan.order, (Order{1, 2}));
    EXPECT_EQ(plan.notices, (Lines{"scan: 2 slices of another size, direction or kind left out"}));
}

TEST(DICOMSeries, OfDoublesTheLowestNumberStays)
{
    const DICOMPlan plan = planDICOMVolume({slice(0, 7), slice(1, 5), slice(0, 3), slice(2, 1)}, "scan");
    EXPECT_EQ(plan.order, (Order{2, 1, 3}));
    EXPECT_EQ(plan.notices, (Lines{"scan: 1 slice lies where another one does, left out"}));
}

TEST(DICOMSeries, AGapIsToldAndTheUsualDistanceTaken)
{
    const DICOMPlan plan =
        planDICOMVolume({slice(0), slice(2), slice(4), slice(10), slice(12), slice(14)}, "scan");
    EXPECT_EQ(plan.spacing[2], 2.f);
    EXPECT_EQ(plan.notices,
              (Lines{"scan: 1 distance of slices differs from the usual 2 mm, the largest is 6 mm"}));
    // Roundings of the places are no gap.
    EXPECT_FLOAT_EQ(planDICOMVolume({slice(0), slice(0.699), slice(1.4), slice(2.1)}, "scan").spacing[2],
                    0.7f);
    EXPECT_EQ(planDICOMVolume({slice(0), slice(0.699), slice(1.4), slice(2.1)}, "scan").notices, Lines());
}

TEST(DICOMSeries, WithoutPlacesTheNumbersOrder)
{
    std::vector<DICOMFrame> frames = {slice(0, 3), slice(0, 1), slice(0, 2)};
    frames[1].hasPosition = false;
    const DICOMPlan plan = planDICOMVolume(frames, "scan");
    EXPECT_EQ(plan.order, (Order{1, 2, 0}));
    EXPECT_EQ(plan.spacing[2], 9.f);
    EXPECT_EQ(plan.notices, (Lines{"scan: slices without positions, in the order of their numbers"}));
}

TEST(DICOMSeries, NoFramesMakeAnEmptyPlan)
{
    EXPECT_TRUE(planDICOMVolume({}, "scan").order.empty());
}

TEST(DICOMElements, AnElementThatDoesNotFitTheFileIsNamedWithItsByte)
{
    Bytes file = DICOMFile(1, 1, {7}).bytes();
    DICOMElements elements;
    std::string fault;
    EXPECT_TRUE(readDICOMElements(file.data(), file.size(), elements, fault)) << fault;
    EXPECT_EQ(elements.syntax, "1.2.840.10008.1.2.1");
    const DICOMValue pixels = elements.set.values[0x7fe00010];
    EXPECT_EQ(pixels.offset, file.size() - 2);
    EXPECT_EQ(pixels.length, 2u);

    // Nothing behind the pixels is looked at.
    Bytes longer = file;
    longer.insert(longer.end(), {1, 2, 3});
    EXPECT_TRUE(readDICOMElements(longer.data(), longer.size(), elements, fault));

    // The pixels' length stands six bytes ahead of the end.
    const std::size_t start = file.size() - 14;
    file[file.size() - 3] = 0x7f;
    EXPECT_FALSE(readDICOMElements(file.data(), file.size(), elements, fault));
    EXPECT_EQ(fault, "byte " + std::to_string(start) +
                         ": an element of 2130706434 bytes starts here, but the file ends at byte " +
                         std::to_string(file.size()));
    EXPECT_FALSE(readDICOMElements(file.data(), 131, elements, fault));
    EXPECT_EQ(fault, "byte 128: no DICOM signature");
}
