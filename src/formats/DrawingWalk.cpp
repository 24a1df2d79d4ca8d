#include <LibStrokeset/Formats/DrawingWalk.h>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>

namespace LibStrokeset::Formats {

namespace {

/// Tracks where the pen was lifted and reports the jumps.
class CPenTracker {
public:
    explicit CPenTracker(IDrawingVisitor& visitor) : m_visitor(visitor) {}

    void putDown(const Eigen::RowVector3f& start, const Eigen::RowVector3f& end) {
        if (m_hasLifted) {
            m_visitor.onJump(m_lifted, start);
        }
        m_lifted = end;
        m_hasLifted = true;
    }

private:
    IDrawingVisitor& m_visitor;
    Eigen::RowVector3f m_lifted = Eigen::RowVector3f::Zero();
    bool m_hasLifted = false;
};

/// Adds up the jumps, in double: a long drawing has many of them.
struct STravel : IDrawingVisitor {
    double length = 0.0;
    void onPath(const LibStrokeset::CSubPath&) override {}
    void onDot(const LibStrokeset::CDot&) override {}
    void onRecord(const LibStrokeset::CUnsupportedElement&) override {}
    void onJump(const Eigen::RowVector3f& from, const Eigen::RowVector3f& to) override {
        length += (to - from).cast<double>().norm();
    }
};

} // namespace

double penUpTravel(const LibStrokeset::CStrokeset& drawing) {
    STravel travel;
    walkDrawing(drawing, travel);
    return travel.length;
}

void walkDrawing(const LibStrokeset::CStrokeset& drawing, IDrawingVisitor& visitor) {
    using namespace LibStrokeset;
    CPenTracker pen(visitor);
    for (const CCollection* collection : drawing.getCollections()) {
        if (const auto* path = dynamic_cast<const CSubPath*>(collection)) {
            if (!path->isEmpty()) {
                pen.putDown(path->getFirstPosition(), path->getLastPosition());
                visitor.onPath(*path);
            }
        } else if (const auto* dots = dynamic_cast<const CDotCollection*>(collection)) {
            for (const CDot& dot : *dots) {
                pen.putDown(dot.getPosition(), dot.getPosition());
                visitor.onDot(dot);
            }
        } else if (const auto* records =
                       dynamic_cast<const CUnsupportedElementCollection*>(collection)) {
            for (const CUnsupportedElement& record : records->getElements()) {
                visitor.onRecord(record);
            }
        }
    }
}

} // namespace LibStrokeset::Formats
