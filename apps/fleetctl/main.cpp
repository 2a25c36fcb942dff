// fleetctl: reads and changes network video devices from the command line.
#include <fleetkit/Product/Technic/LogThreshold.h>

#include <cstdio>
#include <exception>

#include "CommandLine.h"
#include "ExitCode.h"
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
        case CommandLine::Verb::Text:
            output.text(line.strText);
            break;
    }
    return ExitCode::Success;
}

Output outputFor(const CommandLine& line, std::FILE* pStream) {
    const bool bTerminal = pStream != nullptr && isTerminal(pStream);
    return {pStream, line.format.value_or(bTerminal ? Format::Table : Format::JsonLines),
            bTerminal ? terminalWidth(pStream).value_or(PageWidth) : AnyWidth};
}

int run(int nCount, char** ppArguments, std::FILE* pOutput) {
    const CommandLine line = parseCommandLine(nCount, ppArguments);
    if (line.nVerbosity > 0) {
        setLogFilter(line.nVerbosity > 1 ? LogLevel::Trace : LogLevel::Failure);
    }
    Output output = outputFor(line, pOutput);
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
        std::fprintf(stderr, "fleetctl: %s\n", error.what());
        return ExitCode::WrongUsage;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleetctl: %s\n", error.what());
        return ExitCode::OperationFailed;
    }
}
