#include "tests/model/advanced_model.h"

#include <algorithm>

namespace tests {
namespace {

template <typename Text>
bool IsBelow(const Text& path, const Text& ancestor) {
    return path.size() > ancestor.size() && path.compare(0, ancestor.size(), ancestor) == 0 &&
           path[ancestor.size()] == '\\';
}

// An empty thing when there is none of the name.
template <typename Map>
typename Map::mapped_type At(const Map& map, const typename Map::key_type& name) {
    const auto found = map.find(name);
    return found != map.end() ? found->second : typename Map::mapped_type();
}

bool HasParent(const DeviceImage& device, const std::wstring& path) {
    const std::wstring parent = path.substr(0, path.rfind(L'\\'));
    const auto found = device.files.find(parent);
    return parent.empty() || (found != device.files.end() && found->second.is_folder);
}

bool IsEmptyFolder(const DeviceImage& device, const std::wstring& path) {
    return std::none_of(device.files.begin(), device.files.end(),
                        [&](const auto& file) { return IsBelow(file.first, path); });
}

// Calls `act` for what `map` has and `other` has not, or not the same.
template <typename Map, typename Same, typename Act>
void ForEachBeyond(const Map& map, const Map& other, Same same, Act act) {
    for (const auto& [name, thing] : map) {
        const auto found = other.find(name);
        if (found == other.end() || !same(thing, found->second)) {
            act(name, thing);
        }
    }
}

void CreateKey(DeviceImage& device, const std::u16string& path) {
    for (std::size_t end = path.find(u'\\', path.find(u'\\') + 1); end != path.npos;
         end = path.find(u'\\', end + 1)) {
        device.keys[path.substr(0, end)];
    }
    device.keys[path];
}

bool HoldsRecord(const std::map<std::uint32_t, sim::databases::Record>& records, std::uint32_t oid,
                 const sim::databases::Record& record) {
    const auto found = records.find(oid);
    return found != records.end() && SameRecord(found->second, record);
}

bool DeleteValue(DeviceImage& device, const std::u16string& path, const std::u16string& name) {
    const auto key = device.keys.find(path);
    // A value that is not there cannot be deleted; a key that is not there has none.
    return key == device.keys.end() || key->second.erase(name) != 0;
}

// The names of the keys and values that `from` has beyond `to`.
std::set<std::string> DeletedOfRegistry(const DeviceImage& from, const DeviceImage& to) {
    std::set<std::string> names;
    for (const auto& [path, values] : from.keys) {
        if (to.keys.count(path) == 0) {
            names.insert(KeyName(path));
        }
        const auto others = At(to.keys, path);
        for (const auto& [name, value] : values) {
            const auto other = others.find(name);
            if (other == others.end() || !(other->second == value)) {
                names.insert(ValueName(path, name));
            }
        }
    }
    return names;
}

// Whether the device has something in or below the key that is not to go.
bool HoldsMore(const DeviceImage& device, const std::u16string& key,
               const std::set<std::string>& deleted) {
    for (const auto& [path, values] : device.keys) {
        if (path != key && !IsBelow(path, key)) {
            continue;
        }
        if (path != key && deleted.count(KeyName(path)) == 0) {
            return true;
        }
        for (const auto& entry : values) {
            if (deleted.count(ValueName(path, entry.first)) == 0) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace

AdvancedModel::AdvancedModel(const DeviceImage& from, const DeviceImage& to, bool with_databases) {
    CompareFiles(from, to);
    CompareKeys(from, to);
    if (with_databases) {
        CompareDatabases(from, to);
    }
}

void AdvancedModel::DeleteFile(const std::wstring& path, bool is_folder) {
    deletions_.push_back({"- " + FileName(path), [=](DeviceImage& device, const Paths& locked) {
                              const auto found = device.files.find(path);
                              if (found == device.files.end()) {
                                  return true;
                              }
                              if (found->second.is_folder != is_folder || locked.count(path) != 0 ||
                                  !IsEmptyFolder(device, path)) {
                                  return false;
                              }
                              device.files.erase(found);
                              return true;
                          }});
}

AdvancedModel::Operation AdvancedModel::FileToWrite(const std::wstring& path,
                                                    const ImageFile& file) {
    return {"+ " + FileName(path), [=](DeviceImage& device, const Paths& locked) {
                const auto found = device.files.find(path);
                const bool is_there = found != device.files.end();
                if (!HasParent(device, path) || locked.count(path) != 0 ||
                    (is_there && (file.is_folder || found->second.is_folder))) {
                    return false;
                }
                device.files[path] = file;
                return true;
            }};
}

// A file that was moved or written anew is another version of another object.
void AdvancedModel::CompareFiles(const DeviceImage& from, const DeviceImage& to) {
    ForEachBeyond(
        from.files, to.files, SameVersion,
        [&](const std::wstring& path, const ImageFile& file) { DeleteFile(path, file.is_folder); });
    ForEachBeyond(to.files, from.files, SameVersion,
                  [&](const std::wstring& path, const ImageFile& file) {
                      files_.push_back(FileToWrite(path, file));
                  });
    for (const auto& [path, file] : to.files) {
        wanted_["- " + FileName(path)] = FileToWrite(path, file);
    }
}

void AdvancedModel::CompareKeys(const DeviceImage& from, const DeviceImage& to) {
    const auto any = [](const auto&, const auto&) { return true; };
    const auto same = [](const ImageValue& a, const ImageValue& b) { return a == b; };
    const std::set<std::string> deleted = DeletedOfRegistry(from, to);
    ForEachBeyond(from.keys, to.keys, any, [&](const std::u16string& path, const auto&) {
        deletions_.push_back({"- " + KeyName(path), [=](DeviceImage& device, const Paths&) {
                                  if (HoldsMore(device, path, deleted)) {
                                      return true;
                                  }
                                  for (auto key = device.keys.begin(); key != device.keys.end();) {
                                      key = key->first == path || IsBelow(key->first, path)
                                                ? device.keys.erase(key)
                                                : std::next(key);
                                  }
                                  return true;
                              }});
    });
    ForEachBeyond(to.keys, from.keys, any, [&](const std::u16string& path, const auto&) {
        others_.push_back({"+ " + KeyName(path), [=](DeviceImage& device, const Paths&) {
                               CreateKey(device, path);
                               return true;
                           }});
    });
    for (const auto& entry : from.keys) {
        const std::u16string path = entry.first;
        ForEachBeyond(entry.second, At(to.keys, path), same,
                      [&](const std::u16string& name, const ImageValue&) {
                          deletions_.push_back({"- " + ValueName(path, name),
                                                [=](DeviceImage& device, const Paths&) {
                                                    return DeleteValue(device, path, name);
                                                }});
                      });
    }
    for (const auto& entry : to.keys) {
        const std::u16string path = entry.first;
        ForEachBeyond(entry.second, At(from.keys, path), same,
                      [&](const std::u16string& name, const ImageValue& value) {
                          others_.push_back({"+ " + ValueName(path, name),
                                             [=](DeviceImage& device, const Paths&) {
                                                 const auto key = device.keys.find(path);
                                                 if (key == device.keys.end()) {
                                                     return false;
                                                 }
                                                 key->second[name] = value;
                                                 return true;
                                             }});
                      });
    }
}

void AdvancedModel::WriteDatabase(const std::u16string& name,
                                  const sim::databases::Database& shape) {
    others_.push_back({"+ " + DatabaseName(name), [=](DeviceImage& device, const Paths&) {
                           const auto found = device.databases.find(name);
                           if (found == device.databases.end()) {
                               device.databases[name].shape = shape;
                           } else {
                               found->second.shape.sort_orders = shape.sort_orders;
                           }
                           return true;
                       }});
}

// The record that has the id is written over if it still is the one that is written.
void AdvancedModel::WriteRecord(const std::u16string& database, std::uint32_t oid,
                                const sim::databases::Record& record) {
    const std::uint32_t new_id = next_id_++;
    others_.push_back({"+ " + RecordName(database, oid),
                       [=, matched = matched_](DeviceImage& device, const Paths&) {
                           const auto found = device.databases.find(database);
                           if (found == device.databases.end()) {
                               return false;
                           }
                           auto& records = found->second.records;
                           const bool is_there =
                               HoldsRecord(records, oid, record) && matched.count(oid) == 0;
                           sim::databases::Record& written = records[is_there ? oid : new_id];
                           for (const sim::databases::Property& property : record) {
                               sim::databases::Put(written, property);
                           }
                           return true;
                       }});
}

// A record that changed since, or another one with the id, is none of the state's.
void AdvancedModel::DeleteRecord(const std::u16string& database, std::uint32_t oid,
                                 const sim::databases::Record& record) {
    deletions_.push_back({"- " + RecordName(database, oid), [=](DeviceImage& device, const Paths&) {
                              const auto found = device.databases.find(database);
                              if (found != device.databases.end() &&
                                  HoldsRecord(found->second.records, oid, record)) {
                                  found->second.records.erase(oid);
                              }
                              return true;
                          }});
}

void AdvancedModel::CompareDatabases(const DeviceImage& from, const DeviceImage& to) {
    const auto same_database = [](const ImageDatabase& a, const ImageDatabase& b) {
        return a.shape.oid == b.shape.oid && a.shape.type == b.shape.type;
    };
    ForEachBeyond(
        from.databases, to.databases, same_database,
        [&](const std::u16string& name, const ImageDatabase&) {
            deletions_.push_back(
                {"- " + DatabaseName(name), [=](DeviceImage& device, const Paths&) {
                     const auto found = device.databases.find(name);
                     if (found != device.databases.end() && !found->second.records.empty()) {
                         return false;
                     }
                     device.databases.erase(name);
                     return true;
                 }});
        });
    ForEachBeyond(to.databases, from.databases, same_database,
                  [&](const std::u16string& name, const ImageDatabase& database) {
                      WriteDatabase(name, database.shape);
                  });
    for (const auto& entry : from.databases) {
        const std::u16string name = entry.first;
        const auto others = At(to.databases, name).records;
        for (const auto& [oid, record] : entry.second.records) {
            const auto other = others.find(oid);
            if (other != others.end() && SameRecord(other->second, record)) {
                matched_.insert(oid);
            }
        }
        ForEachBeyond(entry.second.records, others, SameRecord,
                      [&](std::uint32_t oid, const sim::databases::Record& record) {
                          DeleteRecord(name, oid, record);
                      });
    }
    for (const auto& [name, database] : to.databases) {
        ForEachBeyond(database.records, At(from.databases, name).records, SameRecord,
                      [&, &of = name](std::uint32_t oid, const sim::databases::Record& record) {
                          WriteRecord(of, oid, record);
                      });
    }
}

bool AdvancedModel::WorkOff(Operations& operations, DeviceImage& device, const Paths& locked) {
    const std::size_t before = operations.size();
    for (std::size_t left = before + 1; left != operations.size();) {
        left = operations.size();
        operations.erase(std::remove_if(operations.begin(), operations.end(),
                                        [&](const Operation& operation) {
                                            return operation.apply(device, locked);
                                        }),
                         operations.end());
    }
    return operations.size() != before;
}

// A deletion of what the state has, and that nothing writes back, is a write.
void AdvancedModel::KeepWhatIsWanted() {
    const auto wanted_alone = [this](const Operation& deletion) {
        const auto wanted = wanted_.find(deletion.line);
        return wanted != wanted_.end() &&
               std::none_of(files_.begin(), files_.end(), [&](const Operation& write) {
                   return write.line == wanted->second.line;
               });
    };
    const auto first =
        std::stable_partition(deletions_.begin(), deletions_.end(),
                              [&](const Operation& deletion) { return !wanted_alone(deletion); });
    for (auto deletion = first; deletion != deletions_.end(); ++deletion) {
        files_.push_back(wanted_.at(deletion->line));
    }
    deletions_.erase(first, deletions_.end());
}

bool AdvancedModel::Run(DeviceImage& device, const Paths& locked) {
    bool whole = true;
    for (bool first = true, any = true; any; first = false) {
        KeepWhatIsWanted();
        any = WorkOff(deletions_, device, locked);
        any = WorkOff(files_, device, locked) || any;
        any = WorkOff(others_, device, locked) || any;
        whole = whole && (!first || Left().empty());
    }
    return whole;
}

std::multiset<std::string> AdvancedModel::Left() const {
    std::multiset<std::string> lines;
    for (const Operations* operations : {&deletions_, &files_, &others_}) {
        for (const Operation& operation : *operations) {
            lines.insert(operation.line);
        }
    }
    return lines;
}

}  // namespace tests
