// A device's state as one append-only log with a published length. Each process keeps an ordinary
// map in memory and reads what was appended since; a writer holds a lock, appends, then publishes
// the new length with one store, so that what is not published does not exist and nothing is torn
// by a kill. Compacting writes a new log beside the old one and publishes its number together with
// its length.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sim {

class LogStore {
public:
    using Map = std::map<std::u16string, std::string>;

    // Keeps sums and lists of what the map holds, so that nobody walks over it to answer a call.
    class Watcher {
    public:
        virtual ~Watcher() = default;
        // A key under the watched prefix came, changed or went; null where there was or is none.
        // Called in the middle of a change: no View may be made here.
        virtual void Changed(const std::u16string& key, const std::string* before,
                             const std::string* now) = 0;
    };

    // Opens or makes the log and `state.head` in `folder` (a host folder that exists). Throws
    // std::runtime_error when that is not possible.
    explicit LogStore(const std::wstring& folder);
    ~LogStore();
    LogStore(const LogStore&) = delete;
    LogStore& operator=(const LogStore&) = delete;

    // Whoever reads or changes the state holds a View or a Change for that long. Both may be nested
    // in one thread. A View sees everything published before it was made.
    class View {
    public:
        explicit View(LogStore& store);
        const std::string* Find(const std::u16string& key) const;
        const Map& map() const;
        // Calls `visit` with each key that begins with `prefix`, in order, and its value. Nothing
        // may change meanwhile.
        template <typename Visit>
        void ForEach(const std::u16string& prefix, Visit&& visit) const {
            for (auto at = map().lower_bound(prefix);
                 at != map().end() && at->first.compare(0, prefix.size(), prefix) == 0; ++at) {
                store_.CountStep();
                visit(at->first, at->second);
            }
        }
        // From now on `watcher` is told of each key that begins with `prefix`, at first of those
        // that are there. It lives as long as the store.
        void Watch(std::u16string prefix, Watcher& watcher) const;

    protected:
        LogStore& store_;
        std::unique_lock<std::recursive_mutex> guard_;
    };

    // Several changes that are published together or, when the process dies before the end, not at
    // all. The map shows them at once to this process. The outermost Change publishes. A Change
    // that an exception ends takes back what was changed since it was made, and that alone.
    class Change : public View {
    public:
        explicit Change(LogStore& store);
        ~Change();
        Change(const Change&) = delete;
        Change& operator=(const Change&) = delete;
        void Set(const std::u16string& key, std::string value);
        void Erase(const std::u16string& key);

    private:
        friend class LogStore;
        void TakeBack();

        // What stood under each changed key before; nothing where the key is new.
        std::map<std::u16string, std::optional<std::string>> before_;
        Change* outer_;
        int exceptions_;
    };

    // Writes the present state as a new, shorter log. Other processes go on with it. Not within a
    // View or a Change.
    void Compact();

    const std::wstring& folder() const { return folder_; }

    // Entries that were looked for, passed by or taken in so far, and places of what is kept beside
    // them: the work of this process, by which tests see that a call walks over nothing.
    std::uint64_t steps() const { return steps_; }
    void CountStep() { ++steps_; }

private:
    struct Files;
    void CatchUp();
    void Clear();
    // The one way in which the map changes; nothing for `value` takes the key away. Returns what
    // stood there.
    std::optional<std::string> Replace(const std::u16string& key, std::optional<std::string> value);
    void Tell(const std::u16string& key, const std::string* before, const std::string* now);
    void Apply(const char* bytes, std::size_t size);
    void Publish(const Change& change);

    std::wstring folder_;
    std::unique_ptr<Files> files_;
    std::recursive_mutex mutex_;
    Map map_;  // in order, for whoever lists what begins with a prefix
    std::unordered_map<std::u16string_view, Map::iterator> places_;  // the same, by the whole key
    std::vector<std::pair<std::u16string, Watcher*>> watchers_;
    std::uint32_t read_ = 0;
    std::uint64_t steps_ = 0;
    Change* innermost_ = nullptr;
};

}  // namespace sim
