#include <LibStrokeset/Formats/DrawingSummary.h>

#include <cmath>
#include <set>
#include <utility>

#include <LibStrokeset/CDotCollection.h>
#include <LibStrokeset/CUnsupportedElementCollection.h>
#include <LibStrokeset/Formats/DrawingWalk.h>

namespace LibStrokeset::Formats {

namespace {

/// Gathers the figures of the paths, dots and records as the walk reports them.
class CSummaryVisitor : public IDrawingVisitor {
public:
    explicit CSummaryVisitor(SDrawingSummary& summary) : m_summary(summary) {}

    void onPath(const CSubPath& path) override {
        ++m_summary.subPaths;
        for (const CLine& line : path) {
            ++m_summary.lines;
            m_pens.insert(line.getPenNumber());
            m_pens.insert(line.getEndPenNumber());
            include(line.getPosition());
            include(line.getEndPosition());
            m_summary.drawnLength +=
                (line.getEndPosition() - line.getPosition()).cast<double>().norm();
        }
    }
    void onDot(const CDot& dot) override {
        ++m_summary.dots;
        m_pens.insert(dot.getPenNumber());
        include(dot.getPosition());
    }
    void onRecord(const CUnsupportedElement&) override { ++m_summary.records; }
    void onJump(const Eigen::RowVector3f&, const Eigen::RowVector3f&) override {}

    const std::set<unsigned short>& pens() const { return m_pens; }

private:
    /// Widens the bounding box; fmin and fmax let a NaN coordinate pass unseen.
    void include(const Eigen::RowVector3f& p) {
        for (int i = 0; i < 3; ++i) {
            m_summary.low[i] = m_summary.hasBox ? std::fmin(m_summary.low[i], p[i]) : p[i];
            m_summary.high[i] = m_summary.hasBox ? std::fmax(m_summary.high[i], p[i]) : p[i];
        }
        m_summary.hasBox = true;
    }

    SDrawingSummary& m_summary;
    std::set<unsigned short> m_pens;
};

} // namespace

SDrawingSummary summarizeDrawing(CStrokeset& drawing) {
    SDrawingSummary summary;
    CSummaryVisitor visitor(summary);
    walkDrawing(drawing, visitor);
    summary.pens.assign(visitor.pens().begin(), visitor.pens().end());
    for (const CCollection* collection : std::as_const(drawing).getCollections()) {
        if (dynamic_cast<const CSubPath*>(collection) != nullptr) {
            ++summary.subPathCollections;
        } else if (dynamic_cast<const CDotCollection*>(collection) != nullptr) {
            ++summary.dotCollections;
        } else {
            ++summary.recordCollections;
        }
    }
    summary.points = drawing.getPointsCount() - drawing.getUnsupportedOpcodeCount();
    summary.travelLength = penUpTravel(drawing);
    summary.penChanges = drawing.getPenChangeCount();
    return summary;
}

} // namespace LibStrokeset::Formats
