// The grammar of the command line; the only file that knows the parser library.
#include "CommandLine.h"

#include <fleetkit/DeviceType.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <sstream>

#include "Action.h"
#include "HelpTopics.h"
#include "Suggestion.h"
#include "UsageError.h"

using namespace fleetkit;

namespace {

constexpr const char* Description =
    "Reads and changes network video devices.\n"
    "\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin get time ntp\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin set ntp NTPIp=192.0.2.1 NTPPort=123\n"
    "  fleetctl -d 192.0.2.7:30001 -u admin do restart";

constexpr std::size_t Indent = 2;
constexpr int MostSeconds = 86400;

std::string section(const char* szTitle, const TableRows& vecRows) {
    return std::string(szTitle) + ":\n" + formatTable(vecRows, Indent, PageWidth);
}

std::string actionHelp() {
    TableRows vecRows;
    for (const Action& action : actions()) {
        vecRows.push_back(
            {std::string(action.szName) + ' ' + action.form.szArguments, action.szSummary});
    }
    return section("Actions", vecRows);
}

std::string topicHelp() {
    TableRows vecRows;
    for (const HelpTopic& topic : helpTopics()) {
        vecRows.push_back({topic.szName, topic.szSummary});
    }
    return section("Topics", vecRows);
}

// A name with the options that it needs, and in brackets those that it takes.
std::string usageOf(const Property& property) {
    std::string strUsage = property.szName;
    for (const Selector& selector : selectors()) {
        if ((property.nNeeds & selector.nBit) != 0) {
            strUsage += std::string(" ") + selector.szOption + " N";
        } else if ((property.nUses & selector.nBit) != 0) {
            strUsage += std::string(" [") + selector.szOption + " N]";
        }
    }
    return strUsage;
}

template <class Function>
std::string nameHelp(Function Property::*pFunction) {
    TableRows vecRows;
    for (const Property& property : properties()) {
        if (property.*pFunction != nullptr) {
            vecRows.push_back({usageOf(property), property.szSummary});
        }
    }
    return section("Names", vecRows);
}

// Keeps the descriptions to the page.
class PageFormatter : public CLI::Formatter {
public:
    std::string make_option_desc(const CLI::Option* pOption) const override {
        return wrapped(Formatter::make_option_desc(pOption));
    }
    std::string make_subcommand(const CLI::App* pVerb) const override {
        std::stringstream out;
        CLI::detail::format_help(out, pVerb->get_name(), wrapped(pVerb->get_description()),
                                 get_column_width());
        return out.str();
    }

private:
    std::string wrapped(const std::string& strText) const {
        std::string strLines = formatTable({{strText}}, 0, PageWidth - get_column_width());
        strLines.pop_back();
        return strLines;
    }
};

// Numbers of the command line, with the name of the option for the error.
int parseNumber(const std::string& strText, const std::string& strOption,
                const std::string& strWhat = describeShape({})) {
    int nNumber = 0;
    const char* pEnd = strText.data() + strText.size();
    const auto [pStop, nError] = std::from_chars(strText.data(), pEnd, nNumber);
    if (nError != std::errc() || pStop != pEnd) {
        throw UsageError(strOption + " takes " + strWhat + ", not '" + strText + "'");
    }
    return nNumber;
}

int parseType(const std::string& strText, const std::string& strOption) {
    return strText == "ipc"   ? CameraType
           : strText == "nvr" ? RecorderType
                              : parseNumber(strText, strOption, "ipc, nvr or a number");
}

void addSelectors(CLI::App& verb, Selection& selection) {
    for (const Selector& selector : selectors()) {
        const auto parse = selector.nBit == SelectorBit::Type
                               ? parseType
                               : [](const std::string& strText, const std::string& strOption) {
                                     return parseNumber(strText, strOption);
                                 };
        verb.add_option_function<std::string>(
                selector.szOption,
                [&selection, &selector, parse](const std::string& strText) {
                    selection.*selector.pMember = parse(strText, selector.szOption);
                },
                selector.szHelp)
            ->type_name("NUMBER");
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
           "--timeout",
           [&line](const std::string& strText) {
               const int nSeconds = parseNumber(strText, "--timeout");
               if (nSeconds < 1 || nSeconds > MostSeconds) {
                   throw UsageError("--timeout takes 1 to " + std::to_string(MostSeconds) +
                                    " seconds, not '" + strText + "'");
               }
               line.nTimeoutMs = nSeconds * 1000;
           },
           "How long the device may take for each answer; by default 10, and 5 without a sign of "
           "it")
        ->type_name("SECONDS");
    app.add_option_function<std::string>(
           "-o,--output",
           [&line](const std::string& strFormat) {
               if (strFormat != "json" && strFormat != "table") {
                   throw UsageError("--output takes json or table, not '" + strFormat + "'");
               }
               line.format = strFormat == "json" ? Format::JsonLines : Format::Table;
           },
           "json or table; by default a table on a terminal, otherwise JSON")
        ->type_name("FORMAT");
    app.add_flag("-v,--verbose", line.nVerbosity,
                 "Show the library's log on standard error: -v failed steps, -vv everything");
}

void addVerbs(CLI::App& app, CommandLine& line) {
    using Verb = CommandLine::Verb;
    CLI::App* pGet = addVerb(app, line, Verb::Get, "get", "Read from the device");
    pGet->add_option("name", line.vecNames,
                     "What to read; `fleetctl vocabulary NAME` tells its fields")
        ->type_name("NAME");
    pGet->add_flag("--list", line.bList, "Print the names, and whether get and set know them");
    addSelectors(*pGet, line.selection);
    pGet->footer([] { return nameHelp(&Property::get); });

    CLI::App* pSet = addVerb(app, line, Verb::Set, "set",
                             "Read from the device, change the named fields, write them back");
    pSet->add_option("name", line.strName, "What to change")->type_name("NAME");
    pSet->add_option("field", line.vecArguments,
                     "Path=value: NTPPort=123, OSDGlobalParam.InverseFlag=true, 0.BitRate=2048; "
                     "lists and records as JSON")
        ->type_name("FIELD=VALUE");
    addSelectors(*pSet, line.selection);
    pSet->footer([] { return nameHelp(&Property::set); });

    CLI::App* pDo = addVerb(app, line, Verb::Do, "do", "Have the device do something");
    pDo->add_option("action", line.strName, "What to do")->type_name("ACTION");
    pDo->add_option("argument", line.vecArguments, "As the action says")->type_name("ARGUMENT");
    pDo->add_flag("--yes", line.bYes, "Answer the question of a destructive action");
    pDo->add_option_function<std::vector<std::string>>(
           "--hold",
           [&line](const std::vector<std::string>& vecTexts) {
               for (const std::string& strText : vecTexts) {
                   line.vecHold.push_back(parseNumber(strText, "--hold"));
               }
           },
           "reset: kinds of setting to keep, by the device's numbers")
        ->type_name("NUMBER,...")
        ->delimiter(',');
    pDo->add_option("--new-password-file", line.strNewPasswordFile,
                    "passwd: file with the new password in its first line; "
                    "else FLEETCTL_NEW_PASSWORD or a question")
        ->type_name("FILE");
    pDo->footer(actionHelp);

    CLI::App* pVocabulary =
        addVerb(app, line, Verb::Vocabulary, "vocabulary",
                "Print a record or a command of the protocol, or list all records");
    pVocabulary
        ->add_option("name", line.strName,
                     "Name or id of a record, a name of `get`, or id of a command. In printed "
                     "lines \\n is the end of a line, {tag} the element, "
                     "{parent} the one around it, {value} the value that is kept")
        ->type_name("NAME");

    CLI::App* pHelp = addVerb(app, line, Verb::Text, "help", "Print help on a topic or a verb");
    pHelp->add_option("topic", line.strName, "The topic or the verb")->type_name("TOPIC");
    pHelp->footer(topicHelp);
    app.require_subcommand(1);
}

using Words = std::vector<std::string>;

Words verbNames(const CLI::App& app) {
    Words vecNames;
    for (const CLI::App* pVerb : app.get_subcommands(nullptr)) {
        vecNames.push_back(pVerb->get_name());
    }
    return vecNames;
}

Words optionNames(const CLI::App& app) {
    Words vecNames;
    for (const CLI::Option* pOption : app.get_options()) {
        for (const std::string& strName : pOption->get_lnames()) {
            vecNames.push_back("--" + strName);
        }
    }
    return vecNames;
}

bool isOption(const std::string& strText) {
    return strText.size() > 1 && strText.front() == '-';
}

// What is wrong with arguments that the parser did not take. Help is named where it tells more.
std::string explain(const CLI::App& app, const CLI::ParseError& error) {
    const CLI::App* pVerb = app.get_subcommands().empty() ? nullptr : app.get_subcommands().front();
    const std::string strHelp =
        "\nTry 'fleetctl " + (pVerb ? pVerb->get_name() + ' ' : "") + "--help'.";
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
        return error.what() + strHelp;
    }
    const Words vecLeft = app.remaining(true);
    const auto pOption = std::find_if(vecLeft.begin(), vecLeft.end(), isOption);
    if (pOption != vecLeft.end()) {
        Words vecOptions = optionNames(app);
        const Words vecMore = pVerb ? optionNames(*pVerb) : Words();
        vecOptions.insert(vecOptions.end(), vecMore.begin(), vecMore.end());
        const std::string strNearest = nearestWord(*pOption, vecOptions);
        return "unknown option '" + *pOption + "'" +
               (strNearest.empty() ? strHelp : "; did you mean '" + strNearest + "'?");
    }
    if (pVerb == nullptr) {
        const std::string strWord = vecLeft.empty() ? "" : vecLeft.front();
        return (strWord.empty() ? "no verb" : "unknown verb '" + strWord + "'") +
               suggest(strWord, "verbs", verbNames(app)) + (strWord.empty() ? strHelp : "");
    }
    return error.what() + strHelp;
}

std::string helpOn(const CLI::App& app, const std::string& strName) {
    if (strName.empty()) {
        return app.get_formatter()->make_help(&app, app.get_name(), CLI::AppFormatMode::Normal);
    }
    Words vecNames = verbNames(app);
    if (std::find(vecNames.begin(), vecNames.end(), strName) != vecNames.end()) {
        return app.get_subcommand(strName)->help(app.get_name());
    }
    for (const HelpTopic& topic : helpTopics()) {
        if (strName == topic.szName) {
            return topic.szText;
        }
        vecNames.emplace_back(topic.szName);
    }
    throw UsageError("no help on '" + strName + "'" + suggest(strName, "topics", vecNames));
}

}  // namespace

CommandLine parseCommandLine(int nCount, char** ppArguments) {
    CommandLine line;
    CLI::App app(Description, "fleetctl");
    app.formatter(std::make_shared<PageFormatter>());
    app.set_version_flag("--version", "fleetctl " FLEETKIT_VERSION);
    app.footer(topicHelp);
    addCommonOptions(app, line);
    addVerbs(app, line);
    try {
        app.parse(nCount, ppArguments);
    } catch (const CLI::ParseError& error) {
        std::ostringstream text;
        if (app.exit(error, text, text) != 0) {
            throw UsageError(explain(app, error));
        }
        line.nVerb = CommandLine::Verb::Text;
        line.strText = text.str();
    }
    if (app.got_subcommand("help")) {
        line.strText = helpOn(app, line.strName);
    }
    return line;
}
