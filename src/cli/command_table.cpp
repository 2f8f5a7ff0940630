#include <algorithm>
#include <array>

#include "cli/commands.h"

namespace thalvorn::cli {
namespace {

constexpr Option kVesselFilter{"--vessel", "VESSEL", "of this vessel only"};
constexpr Option kVesselTarget{.name = "--vessel", .value = "VESSEL", .help = "for this vessel", .required = true};
constexpr Option kReason{
    .name = "--reason", .value = "TEXT", .help = "why; it stays in the meter’s history", .required = true};

constexpr std::array kList{kVesselFilter};

constexpr std::array kBoard{
    kVesselFilter,
    Option{"--sort", "name|category|due|status", "the order; status without it"},
    Option{"--descending", "", "the other way round"},
    Option{"--kind", "planned|squawk|warranty", "of this kind only, in the counters too"},
};

constexpr std::array kComplete{
    Option{"--on", "TIME", "when the work was done; now without it"},
    Option{"--notes", "TEXT", "technician notes"},
    Option{"--cost", "AMOUNT", "labor cost"},
    Option{"--by", "NAME", "who did it"},
    Option{.name = "--meter", .value = "METER=HOURS", .help = "a reading taken during the work", .repeatable = true},
    Option{.name = "--part",
           .value = "\"NAME;QTY;NUMBER;COST\"",
           .help = "a part used; all but the name may be left out",
           .repeatable = true},
};

constexpr std::array kSnooze{
    Option{.name = "--until", .value = "TIME", .help = "when it is to be flagged again", .required = true}};

constexpr std::array kAdjust{kReason};

constexpr std::array kTemplates{
    Option{"--search", "TEXT", "with these words in title, category or notes"},
    Option{"--category", "CATEGORY", "of this category only"},
};

constexpr std::array kAddTemplates{kVesselTarget,
                                   Option{"--start", "DATE", "intervals count from this day; today without it"}};

constexpr std::array kImport{kVesselTarget, Option{"--dry-run", "", "read and report, add nothing"}};

constexpr std::array kHistory{
    kVesselFilter,
    Option{"--task", "TASKID", "of this task only"},
    Option{"--from", "DATE", "services from this day on"},
    Option{"--to", "DATE", "services until the end of this day"},
};

constexpr std::array kReport{
    Option{"--pdf", "FILE", "write the report as PDF; into a folder under its own name"},
    Option{"--csv", "FILE", "write its records as CSV for a spreadsheet"},
    Option{"--vessel", "VESSEL", "of this vessel; needed by most reports when the fleet has several"},
    Option{"--from", "DATE", "from this day on"},
    Option{"--to", "DATE", "until the end of this day"},
    Option{"--detailed", "", "with notes, parts and corrections (service-history)"},
    Option{"--search", "WORDS", "records in which every word occurs"},
    Option{.name = "--filter",
           .value = "COLUMN=VALUE",
           .help = "records with this value, such as weather=Storm, skipper=Rossi, fuelType=MGO",
           .repeatable = true},
    Option{.name = "--id", .value = "ID", .help = "this record only", .repeatable = true},
    Option{"--oldest-first", "", "in the order of time; the newest come first without it"},
};

constexpr std::array kSignOut{Option{"--force", "", "although changes wait to be sent"}};

constexpr std::array kSync{Option{"--watch", "", "go on until stopped: again after five minutes"}};

constexpr std::array kInvite{
    Option{.name = "--name", .value = "N", .help = "the member's name", .required = true},
    Option{.name = "--role", .value = "R", .help = "admin, editor or viewOnly", .required = true},
};

constexpr std::array kConflicts{Option{"--all", "", "the settled ones too"},
                                Option{"--take-back", "ID", "put the other version back in"}};

constexpr std::array kCommands{
    Command{.name = "demo",
            .operands = "",
            .options = {},
            .access = Access::edits,
            .createsStore = true,
            .onlyPrefix = "demo",
            .summary = "Fill the store with the demo fleet, dated relative to today",
            .details = "What stood under the user demo is replaced; other users’ records are not touched.",
            .run = fillDemo},
    Command{.name = "board",
            .operands = "",
            .options = kBoard,
            .summary = "Show the maintenance board: what is overdue, due soon and on track",
            .details = "Snoozed tasks are shown but not counted.",
            .run = showBoard},
    Command{.name = "complete",
            .operands = "TASKID",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kComplete,
            .access = Access::edits,
            .summary = "Complete a task: write its service log, raise the meters, move it to its next due point",
            .details = "Meters only count up: a reading lower than the meter’s is not taken.\n"
                       "Prints {\"log\":…,\"task\":…,\"vessel\":…}.",
            .run = completeOne},
    Command{.name = "snooze",
            .operands = "TASKID",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kSnooze,
            .access = Access::edits,
            .summary = "Silence a task until a moment to come",
            .details = {},
            .run = snooze},
    Command{.name = "unsnooze",
            .operands = "TASKID",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::edits,
            .summary = "End a task’s snooze",
            .details = {},
            .run = unsnooze},
    Command{.name = "meters",
            .operands = "VESSEL [METER=HOURS]…",
            .fewestOperands = 1,
            .mostOperands = kManyOperands,
            .options = {},
            .access = Access::edits,
            .summary = "Show or raise a vessel’s hour meters",
            .details =
                "Meters are engine, engine2, engine3, generator1, generator2 and hydraulic. They only count up;\n"
                "correct-meter puts a mistyped one right.",
            .run = showOrRaiseMeters},
    Command{.name = "correct-meter",
            .operands = "VESSEL METER=HOURS",
            .fewestOperands = 2,
            .mostOperands = 2,
            .options = kAdjust,
            .access = Access::edits,
            .summary = "Put a mistyped hour meter right",
            .details = {},
            .run = correctMeterReading},
    Command{.name = "replace-meter",
            .operands = "VESSEL METER=HOURS",
            .fewestOperands = 2,
            .mostOperands = 2,
            .options = kAdjust,
            .access = Access::edits,
            .summary = "Record that a new hour meter was fitted and what it starts at",
            .details = "Tasks that wait for the meter keep the hours they still have to run.",
            .run = recordMeterReplacement},
    Command{.name = "history",
            .operands = "",
            .options = kHistory,
            .summary = "Show the service history with its costs",
            .details = {},
            .run = showHistory},
    Command{.name = "report",
            .operands = "REPORT",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kReport,
            .drawsPages = true,
            .summary = "Write the work list, the service history or a register as PDF or CSV",
            .details = "REPORT is work-list, ship-log, bunkering and so on; a wrong one is answered with all of them.\n"
                       "import-tasks, import-history and import read the CSV again.",
            .run = writeReport},
    Command{.name = "templates",
            .operands = "",
            .options = kTemplates,
            .access = Access::none,
            .summary = "Show the template library",
            .details = {},
            .run = showTemplates},
    Command{.name = "add-templates",
            .operands = "TITLE…",
            .fewestOperands = 1,
            .mostOperands = kManyOperands,
            .options = kAddTemplates,
            .access = Access::edits,
            .summary = "Add tasks from the template library to a vessel",
            .details = "All or none: a title that is not in the library or stands there twice is refused.",
            .run = addTemplates},
    Command{.name = "import-tasks",
            .operands = "FILE",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kImport,
            .access = Access::edits,
            .input = Input::forDash,
            .summary = "Import tasks from a CSV file (- is standard input)",
            .details = "Prints {\"valid\":n,\"skipped\":n,\"rows\":[…]}.",
            .run = importTasks},
    Command{.name = "import-history",
            .operands = "FILE",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kImport,
            .access = Access::edits,
            .input = Input::forDash,
            .summary = "Import services from a CSV file that report or the window wrote (- is standard input)",
            .details = "Services that the history has already are left out.\n"
                       "Prints {\"new\":n,\"known\":n,\"skipped\":n,\"logs\":[…]}.",
            .run = importHistory},
    Command{
        .name = "import",
        .operands = "COLLECTION FILE",
        .fewestOperands = 2,
        .mostOperands = 2,
        .options = kImport,
        .access = Access::edits,
        .input = Input::forDash,
        .summary = "Import a register’s records from a CSV file that report or the window wrote (- is standard input)",
        .details = "COLLECTION is shipsLog, bunkeringRecords and so on; a wrong one is answered with all of them.\n"
                   "Records that are there already are left out.\n"
                   "Prints {\"new\":n,\"known\":n,\"skipped\":n,\"records\":[…]}.",
        .run = importRecords},
    Command{
        .name = "list",
        .operands = "COLLECTION",
        .fewestOperands = 1,
        .mostOperands = 1,
        .options = kList,
        .summary = "Print a collection’s records as a JSON list",
        .details = "COLLECTION is vessels, tasks, logs, shipsLog and so on; a wrong one is answered with all of them.",
        .run = listRecords},
    Command{.name = "put",
            .operands = "COLLECTION",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::edits,
            .createsStore = true,
            .input = Input::always,
            .summary = "Add or replace records, read as JSON from standard input",
            .details =
                "Reads one record or a list; a record replaces the one with its id, one without an id gets a new one.\n"
                "When one record of a list is not right, none is stored. Prints the records as stored.",
            .run = putRecords},
    Command{.name = "delete",
            .operands = "COLLECTION ID",
            .fewestOperands = 2,
            .mostOperands = 2,
            .options = {},
            .access = Access::edits,
            .summary = "Delete a record; a vessel goes with everything that hangs on it",
            .details = {},
            .run = deleteRecord},
    Command{.name = "sign-in",
            .operands = "EMAIL",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::edits,
            .createsStore = true,
            .input = Input::always,
            .usesCloud = true,
            .summary = "Sign in to the fleet server and fetch the account's fleet (password on standard input)",
            .details = {},
            .run = signIn},
    Command{.name = "sign-out",
            .operands = "",
            .options = kSignOut,
            .access = Access::edits,
            .usesCloud = true,
            .summary = "End the session; the fleet's records stay in the store",
            .details = {},
            .run = signOut},
    Command{.name = "sync",
            .operands = "",
            .options = kSync,
            .access = Access::edits,
            .usesCloud = true,
            .summary = "Send what was changed here and fetch what was changed elsewhere",
            .details = "The exit status is 1 when something could not be exchanged; it waits for the next time.",
            .run = syncFleet},
    Command{.name = "account",
            .operands = "",
            .options = {},
            .usesCloud = true,
            .summary = "Show the account, its seats and its members",
            .details = {},
            .run = showAccount},
    Command{.name = "open-account",
            .operands = "ACCOUNT",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::edits,
            .usesCloud = true,
            .summary = "Bring another of your accounts into view, by the identifier that “account” lists",
            .details = "Changes that wait belong to the account in view; it is refused until they are sent.",
            .run = openAccount},
    Command{.name = "invite",
            .operands = "EMAIL",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = kInvite,
            .access = Access::edits,
            .usesCloud = true,
            .summary = "Invite somebody to the account",
            .details = "He joins by signing up with that address.",
            .run = inviteMember},
    Command{.name = "conflicts",
            .operands = "",
            .options = kConflicts,
            .access = Access::edits,
            .summary = "Show what was not taken when two people changed one record",
            .details = {},
            .run = showConflicts},
    Command{.name = "status",
            .operands = "",
            .options = {},
            .usesCloud = true,
            .summary =
                "Show who is signed in, which records and files wait to be sent, and when records were last exchanged",
            .details = {},
            .run = showStatus},
    Command{.name = "check",
            .operands = "",
            .options = {},
            .access = Access::upkeep,
            .summary = "Verify the store’s file and say what was found",
            .details = "The exit status is 1 when the store is not sound.",
            .run = checkStore},
    Command{.name = "backup",
            .operands = "FILE",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::upkeep,
            .summary = "Write a consistent copy of the store, without session keys",
            .details = {},
            .run = backUpStore},
    Command{.name = "restore",
            .operands = "FILE",
            .fewestOperands = 1,
            .mostOperands = 1,
            .options = {},
            .access = Access::replacesFile,
            .createsStore = true,
            .summary = "Put a backup in the store’s place and keep what was there",
            .details = {},
            .run = restoreStore},
};

}  // namespace

std::span<const Command> commandTable() { return kCommands; }

const Command* findCommand(std::string_view name) {
  const auto found = std::ranges::find(kCommands, name, &Command::name);
  return found == kCommands.end() ? nullptr : &*found;
}

}  // namespace thalvorn::cli
