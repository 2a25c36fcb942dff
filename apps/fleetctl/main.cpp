// fleetctl: reads and changes network video devices from the command line.
#include <fleetkit/Product/Technic/LogThreshold.h>

#include <cstdio>
#include <exception>

#include "CommandLine.h"
#include "ExitCode.h"
#include "HelpTopics.h"
#include "Output.h"
#include "Terminal.h"
#include "UsageError.h"
#include "Verbs.h"
#include "Vocabulary.h"

using namespace fleetkit;

namespace {

int runVerb(const CommandLine& line, Output& output) {
    switch (line.nVerb) {
        case CommandLine::Verb::Get:
            return runGet(line, output);
        case CommandLine::Verb::Set:
            return runSet(line, output);
        case CommandLine::Verb::Do:
            return runDo(line, output);
        case CommandLine::Verb::Vocabulary:
            return runVocabulary(line, output);
        case CommandLine::Verb::Help:
            output.text(findHelpTopic(line.strName).szText);
            break;
        case CommandLine::Verb::Text:
            output.text(line.strText);
            break;
    }
    return ExitCode::Success;
}

Format defaultFormat(std::FILE* pOutput) {
    return pOutput != nullptr && isTerminal(pOutput) ? Format::Table : Format::JsonLines;
}

int run(int nCount, char** ppArguments, std::FILE* pOutput) {
    const CommandLine line = parseCommandLine(nCount, ppArguments);
    if (line.nVerbosity > 0) {
        setLogFilter(line.nVerbosity > 1 ? LogLevel::Trace : LogLevel::Failure);
    }
    Output output(pOutput, line.format.value_or(defaultFormat(pOutput)));
    const int nExitCode = runVerb(line, output);
    if (!output.finish()) {
        std::fputs("fleetctl: standard output could not be written\n", stderr);
        return ExitCode::OperationFailed;
    }
    return nExitCode;
}

}  // namespace

int main(int nCount, char** ppArguments) {
    std::FILE* pOutput = claimStandardOutput();
    try {
        return run(nCount, ppArguments, pOutput);
    } catch (const UsageError& error) {
        std::fprintf(stderr, "fleetctl: %s\nTry 'fleetctl --help'.\n", error.what());
        return ExitCode::WrongUsage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleetctl: %s\n", error.what());
        return ExitCode::OperationFailed;
    }
}
