/// @file
/// A value type that keeps account of its objects.
#pragma once

#include <set>
#include <stdexcept>

namespace Tervane::System::Testing {

/// What has happened to the objects of `Tracked` since `Tracked::reset()`.
struct TrackedCounts {
    int copies = 0;
    int moves = 0;
    int copyAssignments = 0;
    int moveAssignments = 0;
    int destructions = 0;

    bool operator==(TrackedCounts const&) const = default;
};

/// What a chosen operation of `Tracked` throws.
struct TrackedFailure : std::runtime_error {
    TrackedFailure() : std::runtime_error("as the test asked") {}
};

/// Counts its copies, moves and destructions, knows which of its objects are alive, and throws when told to.
///
/// A wrong pairing of constructions and destructions sets `misused`.
class Tracked {
public:
    static constexpr int defaultId = -1;
    static constexpr int movedFromId = -2;

    static inline TrackedCounts counts;
    static inline std::set<Tracked const*> alive;
    static inline bool misused = false;
    static inline bool copyThrows = false;
    static inline bool copyAssignmentThrows = false;
    /// The number of moves that succeed before one throws; none throws when it is negative.
    static inline int movesBeforeFailure = -1;

    static void reset() {
        counts = {};
        misused = false;
        copyThrows = false;
        copyAssignmentThrows = false;
        movesBeforeFailure = -1;
    }

    Tracked() { born(); }
    explicit Tracked(int id) : _id(id) { born(); }
    Tracked(Tracked const& other) : _id(other.id()) {
        if (copyThrows) {
            throw TrackedFailure();
        }
        ++counts.copies;
        born();
    }
    Tracked(Tracked&& other) noexcept(false) : _id(other.id()) {
        failWhenDue();
        other._id = movedFromId;
        ++counts.moves;
        born();
    }
    ~Tracked() {
        ++counts.destructions;
        misused = alive.erase(this) == 0 || misused;
    }
    Tracked& operator=(Tracked const& other) {
        touched();
        if (copyAssignmentThrows) {
            throw TrackedFailure();
        }
        _id = other.id();
        ++counts.copyAssignments;
        return *this;
    }
    Tracked& operator=(Tracked&& other) noexcept(false) {
        touched();
        _id = other.id();
        if (this != &other) {
            other._id = movedFromId;
        }
        ++counts.moveAssignments;
        return *this;
    }

    int id() const {
        touched();
        return _id;
    }

private:
    void born() { misused = !alive.insert(this).second || misused; }
    void touched() const { misused = !alive.contains(this) || misused; }
    static void failWhenDue() {
        if (movesBeforeFailure == 0) {
            throw TrackedFailure();
        }
        if (movesBeforeFailure > 0) {
            --movesBeforeFailure;
        }
    }

    int _id = defaultId;
};

} // namespace Tervane::System::Testing
