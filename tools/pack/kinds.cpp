#include "pack/kinds.h"

#include "pack/entry_check.h"

#include <optional>
#include <unordered_map>

namespace {

class Finder {
public:
    explicit Finder(const FXPackage& package)
        : package_(package), kinds_(static_cast<std::size_t>(package.cursors.count)) {}

    std::vector<EntryKind> Run() {
        for (std::size_t i = 0; i < kinds_.size(); ++i) {
            places_.emplace(package_.ids[static_cast<int>(i)], i);
            if (const auto kind = KindByMark(Data(i), package_.types[static_cast<int>(i)]))
                Set(i, *kind);
        }
        FollowAll();
        for (const ShowEntry& entry : ShowEntries())
            Ask(entry.id, entry.kind);
        FollowAll();
        // What names others by its shape, before the others are looked at for theirs.
        std::vector<EntryKind> shapes(kinds_.size(), EntryKind::Raw);
        for (std::size_t i = 0; i < kinds_.size(); ++i) {
            if (!kinds_[i])
                shapes[i] = KindByShape(Data(i));
            if (shapes[i] == EntryKind::Animation || shapes[i] == EntryKind::Library)
                Set(i, shapes[i]);
            FollowAll();
        }
        for (std::size_t i = 0; i < kinds_.size(); ++i)
            shapes[i] = kinds_[i].value_or(shapes[i]);
        return shapes;
    }

private:
    const FXPackageData& Data(std::size_t place) const { return *package_.cursors[static_cast<int>(place)]; }

    void Set(std::size_t place, EntryKind kind) {
        kinds_[place] = kind;
        known_.push_back(place);
    }

    void Ask(int id, EntryKind kind) {
        const auto at = places_.find(id);
        if (at != places_.end() && kind != EntryKind::Picture && !kinds_[at->second])
            Set(at->second, kind);
    }

    void FollowAll() {
        for (; followed_ < known_.size(); ++followed_) {
            const std::size_t place = known_[followed_];
            Faults unused;
            EntryFacts facts;
            CheckEntry(*kinds_[place], Data(place), &unused, &facts);
            for (const Reference& reference : ReferencesOf(facts))
                if (const auto id = ReferenceNumber(reference.text))
                    Ask(*id, reference.kind);
        }
    }

    const FXPackage& package_;
    std::vector<std::optional<EntryKind>> kinds_;
    std::unordered_map<int, std::size_t> places_; // by number, of the first
    std::vector<std::size_t> known_;
    std::size_t followed_ = 0; // of those
};

} // namespace

std::vector<EntryKind> KindsOf(const FXPackage& package) {
    return Finder(package).Run();
}

EntryKind KindOf(const FXPackage& package, int id) {
    return KindsOf(package)[static_cast<std::size_t>(package.ids.Findpos(id))];
}
