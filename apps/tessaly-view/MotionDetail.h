#ifndef TESSALY_VIEW_MOTIONDETAIL_H
#define TESSALY_VIEW_MOTIONDETAIL_H

/// \file
/// How much of a picture is left out so that it follows the hand.

namespace viewer
{

/// What a frame is drawn with.
struct Detail
{
    double step = 1.0; ///< the step of the options times this, 1 or more
    int shrink = 1;    ///< of so many pixels along each side one is drawn

    bool full() const { return step == 1.0 && shrink == 1; }
    friend bool operator==(const Detail &a, const Detail &b)
    {
        return a.step == b.step && a.shrink == b.shrink;
    }
};

/// Chooses the detail of moving frames from what the frames before took.
class MotionDetail
{
public:
    static constexpr double targetSeconds = 1.0 / 20.0;
    /// Coarser steps tear surfaces apart; from there on fewer pixels are drawn.
    static constexpr double coarsestStep = 4.0;
    static constexpr int smallest = 4;

    /// For the next frame of a movement.
    Detail moving() const;

    /// Tells what a frame took. Frames at rest count, too: from them the first frame of a movement has its
    /// detail.
    void drawn(const Detail &detail, double seconds);

private:
    double _fullSeconds = 0.2; ///< that a frame in full detail takes
};

} // namespace viewer

#endif
