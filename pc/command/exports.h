// The forms in which a state's objects are handed to other programs.
#pragma once

#include <string>
#include <vector>

#include "pc/command/console.h"
#include "pc/command/json.h"
#include "pc/storage/stored_object.h"
#include "pc/text/failure.h"

namespace tolvenar::pc {

// What an export leaves out, told as it is met.
class Omissions {
public:
    explicit Omissions(Console& console) : console_(console) {}

    void Add(const StoredObject& object, const char* why, ExitCode code);
    void Tell(const std::string& what, ExitCode code);
    ExitCode code() const { return code_; }
    // For --json: the objects, each with its reason, and what else was told.
    const Json& objects() const { return objects_; }
    const Json& notes() const { return notes_; }

private:
    Console& console_;
    ExitCode code_ = ExitCode::kDone;
    Json objects_ = Json::array();
    Json notes_ = Json::array();
};

struct ExportJob {
    StoredPair& pair;
    std::uint16_t state;
    const std::vector<StoredObject>& objects;  // as below
    Omissions& omissions;
    Console& console;
};

// Each gives the bytes of a file of what is of its kind among `objects`, which are whole but for
// their data and in the order of lists.
std::string ExportRegistry(StoredPair& pair, const std::vector<StoredObject>& objects,
                           Omissions& omissions);
std::string ExportOldRegistry(StoredPair& pair, const std::vector<StoredObject>& objects,
                              Omissions& omissions);
std::string ExportDatabases(StoredPair& pair, const std::vector<StoredObject>& objects,
                            Omissions& omissions);
// A table of one database. A Failure when there are several.
std::string ExportTable(StoredPair& pair, const std::vector<StoredObject>& objects,
                        Omissions& omissions);
// Contacts as cards of version 3 and 4, appointments and tasks as a calendar. A Failure when there
// are none.
std::string ExportCards3(StoredPair& pair, const std::vector<StoredObject>& objects,
                         Omissions& omissions);
std::string ExportCards4(StoredPair& pair, const std::vector<StoredObject>& objects,
                         Omissions& omissions);
std::string ExportCalendar(StoredPair& pair, const std::vector<StoredObject>& objects,
                           Omissions& omissions);

}  // namespace tolvenar::pc
