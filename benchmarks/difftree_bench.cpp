// Building and scrolling the difference tree against a plain tree view that holds as many items.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "benchmarks/on_new_device.h"
#include "benchmarks/row.h"
#include "difftree/window/opened_differences.h"
#include "difftree/window/tree_window.h"
#include "platform/text.h"
#include "storage/files/handle_bytes.h"
#include "storage/format/property_encoding.h"

namespace tolvenar {
namespace {

constexpr int kRounds = 3;
constexpr std::uint32_t kObjects = 20000;
constexpr int kPages = 100;
constexpr RECT kPlace = {0, 0, 400, 160};  // a page of ten items

class SilentProgress final : public Progress {
public:
    void ProgressBegin(std::size_t) override {}
    void ProgressStep(const char16_t*) override {}
};

template <typename Work>
double Milliseconds(Work work) {
    LARGE_INTEGER begin, end, frequency;
    ::QueryPerformanceFrequency(&frequency);
    ::QueryPerformanceCounter(&begin);
    work();
    ::QueryPerformanceCounter(&end);
    return 1000.0 * static_cast<double>(end.QuadPart - begin.QuadPart) /
           static_cast<double>(frequency.QuadPart);
}

template <typename Work>
double Fastest(Work work) {
    double fastest = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        fastest = std::min(fastest, Milliseconds(work));
    }
    return fastest;
}

// A storage file with a block for each difference.
class Differences {
public:
    explicit Differences(OpenedStorage& storage) : storage_(storage) {
        ResetList(storage_.difference);
    }
    void Add(ObjectType type, const std::u16string& name, std::uint32_t hive = 0,
             const std::string& data = {}) {
        InfoBlockHead head{};
        head.hive = hive;
        head.type = static_cast<std::uint16_t>(type);
        head.name_bytes = static_cast<std::uint16_t>(name.size() * sizeof(char16_t));
        head.data_bytes = static_cast<std::uint32_t>(data.size());
        ObjectRecord record{};
        record.dwOID = ++count_;
        record.propOffset = static_cast<std::uint32_t>(sav_.size());
        record.flags = count_ % 3 == 0 ? JF_DELETE : JF_ADD;
        record.type = type;
        sav_.append(reinterpret_cast<const char*>(&head), kInfoNameOffset);
        sav_.append(reinterpret_cast<const char*>(name.c_str()),
                    head.name_bytes + sizeof(char16_t));
        record.data_offset = static_cast<std::uint32_t>(sav_.size());
        sav_ += data;
        storage_.difference->InsertCopy(StatelessKeyOf(record), record);
    }
    bool Save() const {
        const UniqueHandle file = OpenFile(storage_.names.sav, GENERIC_WRITE, 0, CREATE_ALWAYS);
        return file && storage_.difference->CountRecords() == count_ &&
               HandleBytes(file.get()).Append(sav_.data(), static_cast<std::uint32_t>(sav_.size()));
    }

private:
    OpenedStorage& storage_;
    std::string sav_ = std::string(236, '\0');
    std::uint32_t count_ = 0;
};

std::u16string Number(std::uint32_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

std::string Title(const std::u16string& text) {
    StoredProperty property{};
    property.propid = 0x4013001F;
    property.value = sizeof property;
    return std::string(reinterpret_cast<const char*>(&property), sizeof property) +
           std::string(reinterpret_cast<const char*>(text.c_str()),
                       (text.size() + 1) * sizeof(char16_t));
}

// Half of them files, documents and others, then values of a few hundred keys and contacts.
bool MakeTypical(OpenedStorage& storage, std::uint32_t count) {
    Differences differences(storage);
    for (std::uint32_t i = 0; i < count; ++i) {
        const std::u16string place = u"\\Folder " + Number(i / 500) + u"\\Part " + Number(i / 50);
        const std::u16string name = u"\\A file of the usual length " + Number(i) + u".txt";
        switch (i % 10) {
            case 0:
            case 1:
            case 2: differences.Add(ObjectType::kFile, u"\\My Documents" + place + name); break;
            case 3:
            case 4: differences.Add(ObjectType::kFile, u"\\Program Files" + place + name); break;
            case 5:
                differences.Add(ObjectType::kDatabaseRecord, u"Contacts Database", 1,
                                Title(u"Contact " + Number(i)));
                break;
            default:
                differences.Add(ObjectType::kRegistryValue,
                                u"Software" + place + u"\u00FFValue " + Number(i),
                                0x80000001 + i % 2);
        }
    }
    return differences.Save();
}

// All in one folder: siblings in the advanced view, and below "Other" in the simple one.
bool MakeSiblings(OpenedStorage& storage, std::uint32_t count) {
    Differences differences(storage);
    for (std::uint32_t i = 0; i < count; ++i) {
        differences.Add(ObjectType::kFile, u"\\Temp\\A file of the usual length " + Number(i));
    }
    return differences.Save();
}

LRESULT Ask(HWND tree, UINT message, WPARAM wparam = 0, HTREEITEM item = nullptr) {
    return ::SendMessageW(tree, message, wparam, reinterpret_cast<LPARAM>(item));
}

HTREEITEM Next(HWND tree, WPARAM relation, HTREEITEM item) {
    return reinterpret_cast<HTREEITEM>(Ask(tree, TVM_GETNEXTITEM, relation, item));
}

HTREEITEM Insert(HWND tree, HTREEITEM parent, const std::u16string& text) {
    TVINSERTSTRUCTW insertion{};
    insertion.hParent = parent;
    insertion.hInsertAfter = TVI_LAST;
    insertion.item.mask = TVIF_TEXT;
    insertion.item.pszText = const_cast<wchar_t*>(Wide(text.c_str()));
    return reinterpret_cast<HTREEITEM>(
        ::SendMessageW(tree, TVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&insertion)));
}

// Items below one parent and nothing else: what the control alone costs.
void FillPlainly(HWND tree, LRESULT items) {
    ::SendMessageW(tree, WM_SETREDRAW, FALSE, 0);
    const HTREEITEM root = Insert(tree, TVI_ROOT, u"Differences");
    for (LRESULT i = 1; i < items; ++i) {
        Insert(tree, root,
               u"A file of the usual length " + Number(static_cast<std::uint32_t>(i)) + u" (+)");
    }
    ::SendMessageW(tree, WM_SETREDRAW, TRUE, 0);
}

// Milliseconds of a page drawn anew after the next, with the first item's children on it.
double TimePages(HWND tree, HTREEITEM parent) {
    Ask(tree, TVM_EXPAND, TVE_EXPAND, parent);
    return Fastest([&] {
               ::SendMessageW(tree, WM_VSCROLL, SB_TOP, 0);
               for (int page = 0; page < kPages; ++page) {
                   ::SendMessageW(tree, WM_VSCROLL, SB_PAGEDOWN, 0);
                   ::InvalidateRect(tree, nullptr, TRUE);
                   ::UpdateWindow(tree);
               }
           }) /
           kPages;
}

class Bench {
public:
    bool Open() {
        parent_ = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, kPlace.right,
                                    kPlace.bottom * 2, nullptr, nullptr, nullptr, nullptr);
        plain_ = ::CreateWindowExW(
            0, WC_TREEVIEWW, L"", WS_CHILD | WS_VISIBLE | TVS_HASBUTTONS | TVS_HASLINES, 0,
            kPlace.bottom, kPlace.right, kPlace.bottom, parent_, nullptr, nullptr, nullptr);
        return plain_ != nullptr && MakeStorageNames(u"\\bench", storage_.names) &&
               window_.RegisterTreeWindowClass(::GetModuleHandleW(nullptr)) &&
               window_.CreateTreeDialog(parent_, &kPlace) != nullptr;
    }
    void Close() {
        window_.DestroyTreeWindowClass();
        ::DestroyWindow(parent_);
        CloseStorage(storage_);
    }

    // A build of 20,000 differences and one of 40,000, each beside a plain tree view that is given
    // as many items.
    bool Build(const char* what, bool (*make)(OpenedStorage&, std::uint32_t), bool advanced) {
        Times times[2];
        Times plain[2];
        for (std::uint32_t twice = 0; twice < 2; ++twice) {
            if (!make(storage_, kObjects << twice)) {
                return false;
            }
            times[twice] = TimeBuild(advanced);
            plain[twice] = TimePlainly(items_);
        }
        const std::string tree = "tree of 20,000 differences, " + std::string(what);
        bench::Print({tree, times[0].build, "ms", "a second", 1000, 1});
        bench::Print({tree + ": plain", times[0].build, "ms", "a plain tree view", plain[0].build});
        bench::Print(
            {tree + ": twice as many", times[1].build, "ms", "a plain tree view", plain[1].build});
        bench::Print(
            {tree + ": deleting", times[0].clear, "ms", "a plain tree view", plain[0].clear});
        bench::Print({tree + ": deleting twice as many", times[1].clear, "ms", "a plain tree view",
                      plain[1].clear});
        return built_ && times[0].build <= 1000;
    }

    // Pages of a long list of siblings, in the simple view below the last category.
    bool Scroll() {
        if (!MakeSiblings(storage_, kObjects)) {
            return false;
        }
        BuildTree(false);
        FillPlainly(plain_, kObjects);
        const HWND tree = window_.tree_view();
        HTREEITEM other = Next(tree, TVGN_CHILD, Next(tree, TVGN_ROOT, nullptr));
        while (HTREEITEM next = Next(tree, TVGN_NEXT, other)) {
            other = next;
        }
        const double ours = TimePages(tree, other);
        const double plain = TimePages(plain_, Next(plain_, TVGN_ROOT, nullptr));
        bench::Print({"tree: a page further and drawn", ours, "ms", "a plain tree view", plain});
        return built_;
    }

private:
    // Milliseconds of the fastest of a few rounds.
    struct Times {
        double build = 1e9;
        double clear = 1e9;
    };
    template <typename Fill, typename Empty>
    static Times TimeRounds(Fill fill, Empty empty) {
        Times times;
        empty();
        for (int round = 0; round < kRounds; ++round) {
            times.build = std::min(times.build, Milliseconds(fill));
            times.clear = std::min(times.clear, Milliseconds(empty));
        }
        return times;
    }
    Times TimeBuild(bool advanced) {
        return TimeRounds([&] { BuildTree(advanced); }, [&] { window_.Clear(); });
    }
    Times TimePlainly(LRESULT items) {
        return TimeRounds([&] { FillPlainly(plain_, items); },
                          [&] { Ask(plain_, TVM_DELETEITEM, 0, TVI_ROOT); });
    }
    void BuildTree(bool advanced) {
        TreeBuild build;
        build.advanced_view = advanced;
        OpenedDifferences differences(engine_);
        built_ = window_.BuildDifferenceTree(differences.enumerator(), build) == 1 && built_;
        items_ = Ask(window_.tree_view(), TVM_GETCOUNT);
    }

    OpenedStorage storage_{};
    DatabaseLayer databases_;
    ObjectInfo info_{storage_.registry_objects, databases_};
    SilentProgress progress_;
    Engine engine_{storage_, databases_, info_, progress_};
    HWND parent_ = nullptr;
    HWND plain_ = nullptr;
    TreeWindow window_;
    bool built_ = true;
    LRESULT items_ = 0;  // of the last tree
};

int Run() {
    Bench bench;
    const bool succeeded = bench.Open() && bench.Build("simple view", MakeTypical, false) &&
                           bench.Build("advanced view", MakeTypical, true) &&
                           bench.Build("siblings in one folder", MakeSiblings, true) &&
                           bench.Build("siblings below \"Other\"", MakeSiblings, false) &&
                           bench.Scroll();
    bench.Close();
    if (!succeeded) {
        std::puts("difference tree: a round failed or was too slow");
    }
    return succeeded ? 0 : 1;
}

}  // namespace
}  // namespace tolvenar

int main() { return bench::OnNewDevice(tolvenar::Run); }
