// The grammar of the command line; the only file that knows the parser library.
#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <sstream>

#include "Action.h"
#include "HelpTopics.h"
#include "UsageError.h"

namespace {

constexpr const char* Description =
    "Reads and changes network video devices.\n"
    "\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin get time ntp\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin set ntp NTPIp=192.0.2.1 NTPEnableFlag=true\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin do restart";

std::string actionHelp() {
    std::vector<std::vector<std::string>> vecRows;
    for (const Action& action : actions()) {
        vecRows.push_back(
            {std::string(action.szName) + ' ' + action.form.szArguments, action.szSummary});
    }
    return "Actions:\n" + formatTable(vecRows, 2);
}

std::string topicHelp() {
    std::vector<std::vector<std::string>> vecRows;
    for (const HelpTopic& topic : helpTopics()) {
        vecRows.push_back({topic.szName, topic.szSummary});
    }
    return "Topics:\n" + formatTable(vecRows, 2);
}

// Fills an optional member once the option has been given.
template <class T>
std::function<void(const T&)> into(std::optional<T>& target) {
    return [&target](const T& value) { target = value; };
}

void addSelectors(CLI::App& verb, Selection& selection) {
    for (const Selector& selector : selectors()) {
        CLI::Option* pOption = verb.add_option_function<int>(
            selector.szOption, into(selection.*selector.pMember), selector.szHelp);
        pOption->type_name("NUMBER");
        if (selector.nBit == SelectorBit::Type) {
            pOption->transform(CLI::Transformer(std::map<std::string, int>{{"ipc", 1}, {"nvr", 5}})
                                   .description(""));
        }
    }
}

// Options may stand in front of the verb and behind it.
CLI::App* addVerb(CLI::App& app, CommandLine& line, CommandLine::Verb nVerb, const char* szName,
                  const char* szDescription) {
    CLI::App* pVerb = app.add_subcommand(szName, szDescription);
    pVerb->fallthrough();
    pVerb->callback([&line, nVerb] { line.nVerb = nVerb; });
    return pVerb;
}

void addCommonOptions(CLI::App& app, CommandLine& line) {
    app.add_option("-d,--device", line.strDevice, "The device, [::1]:PORT for IPv6")
        ->envname("FLEETCTL_DEVICE")
        ->type_name("HOST:PORT");
    app.add_option("-u,--user", line.strUser, "The user to log in as")
        ->envname("FLEETCTL_USER")
        ->type_name("USER");
    app.add_option("--password-file", line.strPasswordFile,
                   "File with the password in its first line; else FLEETCTL_PASSWORD or a question")
        ->type_name("FILE");
    app.add_option_function<std::string>(
           "-o,--output",
           [&line](const std::string& strFormat) {
               line.format = strFormat == "json" ? Format::JsonLines : Format::Table;
           },
           "json or table; by default a table on a terminal, otherwise JSON")
        ->check(CLI::IsMember({"json", "table"}).description(""))
        ->type_name("FORMAT");
    app.add_flag("-v,--verbose", line.nVerbosity,
                 "Show the library's log on standard error: -v failed steps, -vv everything");
}

void addVerbs(CLI::App& app, CommandLine& line) {
    using Verb = CommandLine::Verb;
    CLI::App* pGet = addVerb(app, line, Verb::Get, "get", "Read from the device");
    pGet->add_option("name", line.vecNames, "What to read")->type_name("NAME");
    pGet->add_flag("--list", line.bList, "Print the names, and whether get and set know them");
    addSelectors(*pGet, line.selection);

    CLI::App* pSet = addVerb(app, line, Verb::Set, "set",
                             "Read from the device, change the named fields, write them back");
    pSet->add_option("name", line.strName, "What to change, of `get --list`")->type_name("NAME");
    pSet->add_option("field", line.vecArguments,
                     "Path=value: NTPPort=123, OSDGlobalParam.InverseFlag=true, 0.BitRate=2048;\n"
                     "lists and records as JSON")
        ->type_name("FIELD=VALUE");
    addSelectors(*pSet, line.selection);

    CLI::App* pDo = addVerb(app, line, Verb::Do, "do", "Have the device do something");
    pDo->add_option("action", line.strName, "What to do")->type_name("ACTION");
    pDo->add_option("argument", line.vecArguments, "As the action says")->type_name("ARGUMENT");
    pDo->add_flag("--yes", line.bYes, "Answer the question of a destructive action");
    pDo->add_option("--hold", line.vecHold,
                    "reset: kinds of setting to keep, by the device's numbers")
        ->type_name("NUMBER,...")
        ->delimiter(',');
    pDo->add_option("--new-password-file", line.strNewPasswordFile,
                    "passwd: file with the new password in its first line;\n"
                    "else FLEETCTL_NEW_PASSWORD or a question")
        ->type_name("FILE");
    pDo->footer(actionHelp);

    CLI::App* pVocabulary =
        addVerb(app, line, Verb::Vocabulary, "vocabulary",
                "Print what the reference tells: a record by name, element or id, a command by\n"
                "id, or the names of all records");
    pVocabulary
        ->add_option("name", line.strName,
                     "Name or id. In printed lines \\n is the end of a line, {tag} the element,\n"
                     "{parent} the one around it, {value} the value that is kept")
        ->type_name("NAME");

    CLI::App* pHelp = addVerb(app, line, Verb::Help, "help", "Print help on a topic");
    pHelp->add_option("topic", line.strName, "The topic")->type_name("TOPIC");
    pHelp->footer(topicHelp);
    app.require_subcommand(1);
}

// The verbs, for somebody who has named none of them.
std::string verbHint(const CLI::App& app) {
    if (!app.get_subcommands().empty()) {
        return "";
    }
    std::string strVerbs = "; the verbs are:";
    for (const CLI::App* pVerb : app.get_subcommands(nullptr)) {
        strVerbs += ' ' + pVerb->get_name();
    }
    return strVerbs;
}

}  // namespace

CommandLine parseCommandLine(int nCount, char** ppArguments) {
    CommandLine line;
    CLI::App app(Description, "fleetctl");
    app.set_version_flag("--version", "fleetctl " FLEETKIT_VERSION);
    app.footer(topicHelp);
    addCommonOptions(app, line);
    addVerbs(app, line);
    try {
        app.parse(nCount, ppArguments);
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        if (app.exit(error, text, text) != 0) {
            throw UsageError(error.what() + verbHint(app));
        }
        line.nVerb = CommandLine::Verb::Text;
        line.strText = text.str();
    }
    return line;
}
