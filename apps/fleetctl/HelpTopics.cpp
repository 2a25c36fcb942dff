// The texts of the help pages.
#include "HelpTopics.h"

namespace {

constexpr const char* Environment =
    R"(An option on the command line comes before its variable.

  FLEETCTL_DEVICE        HOST:PORT, as --device
  FLEETCTL_USER          user to log in as, as --user
  FLEETCTL_PASSWORD      password to log in with, after --password-file
  FLEETCTL_NEW_PASSWORD  for `do passwd`, after --new-password-file

A password that is given nowhere is asked for, if standard input is a terminal.
)";

constexpr const char* OutputForms =
    R"(Standard output has data and nothing else; everything else goes to standard
error.

With -o json, which is the default when standard output is no terminal, each
result is one object in one line. A value has the fields of the record by their
names in the protocol, a list is an array:

  {"device":"192.0.2.7:30001","name":"ntp","code":0,"value":{...}}
  {"device":"192.0.2.7:30001","name":"ntp","code":-213,"error":"..."}

`set` shows the value that was written. A failed login is a result with the name
"login". `get --list` and `vocabulary` print an object a line as well.

With -o table a value is shown field by field, under the paths that `set` takes,
or with a column for each field if it is a list of plain records that fits the
terminal; failures go to standard error.

Texts of a device need not be UTF-8. Each byte that belongs to no character of
UTF-8 is shown as \xE9, by its value, which JSON writes "\\xE9"; `set` leaves it
alone in fields that it is not told to change. A character that would steer the
terminal or turn the direction of its texts is shown as \u009B, which in JSON is
that very character.
)";

constexpr const char* ExitCodes = R"(  0  everything asked for was done
  1  at least one operation failed, or the output could not be written
  2  wrong usage: arguments, names, fields, values, no password; nothing was
     changed
  3  the login failed; the "code" of the result tells why

The "code" of a result is the library's, a negative number, or the device's own,
whose meaning only the maker of the device knows.
)";

constexpr const char* Targets =
    R"(A device is named by HOST:PORT, where PORT is its control port and HOST an IPv4
address, an IPv6 address in brackets, or a host name:

  192.0.2.7:30001    [2001:db8::7]:30001    camera-7.example.org:30001

A device that cannot be reached at its address can be given another one by its
device id:

  fleetctl -u admin do network-by-multicast DEVICE-ID NetId=0 WorkingType=1 ...
)";

}  // namespace

const std::vector<HelpTopic>& helpTopics() {
    static const std::vector<HelpTopic> vecTopics = {
        {"environment", "Variables that fleetctl reads", Environment},
        {"output", "JSON and tables", OutputForms},
        {"exit-codes", "Exit statuses", ExitCodes},
        {"targets", "Naming devices", Targets},
    };
    return vecTopics;
}
