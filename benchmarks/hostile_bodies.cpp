// What bodies cost that were made to cost much: time for each byte, which is to stay the same from
// 64 KB to 8 MB or to end with a refusal, and memory at most.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

#include "domain/RecordDescriptor.h"
#include "protocol/SDKNormalXmlBodyParser.h"

using namespace fleetkit;

namespace {

struct Shape {
    const char* szName;
    std::string strHead;
    std::string strPiece;
    std::string strTail;
};

// The record with the most of something, among those that come in lists.
const RecordDescriptor& listedRecord(
    const std::function<std::size_t(const RecordDescriptor&)>& of) {
    const RecordDescriptor* pMost = nullptr;
    for (const RecordDescriptor* pRecord : recordDescriptors()) {
        if (pRecord->szList != nullptr && (pMost == nullptr || of(*pRecord) > of(*pMost))) {
            pMost = pRecord;
        }
    }
    return *pMost;
}

Shape emptyEntries(const char* szName, const RecordDescriptor& record) {
    const std::string strList = record.szList;
    return {szName, "<P><" + strList + ">", "<A/>", "</" + strList + "></P>"};
}

std::string nested(int nLevels, const char* szTag) {
    std::string strText;
    for (int n = 0; n < nLevels; ++n) {
        strText += szTag;
    }
    return strText;
}

std::vector<Shape> shapes() {
    return {
        {"records", "<P>", "<Result/>", "</P>"},
        {"markup below 62 levels", nested(63, "<x>"), "<?>", nested(63, "</x>")},
        {"levels", "", "<x>", ""},
        {"attributes", "<P><a", " b='c'", "/></P>"},
        {"text", "<P>", "text &amp; ", "</P>"},
        emptyEntries("empty entries, large",
                     listedRecord([](const auto& record) { return record.access.nSize; })),
        emptyEntries("empty entries, wordy", listedRecord([](const auto& record) {
                         std::size_t nLogged = 0;
                         for (const FieldDescriptor& field : record) {
                             nLogged += !record.usesLog && field.nPresence == Presence::Logged;
                         }
                         return nLogged;
                     })),
    };
}

CommandBuffer bodyOf(const Shape& shape, std::size_t nLength) {
    std::string strBody = shape.strHead;
    while (strBody.size() < nLength) {
        strBody += shape.strPiece;
    }
    strBody += shape.strTail;
    CommandBuffer body;
    body.allocate(strBody.size() + 1);
    body.append(reinterpret_cast<const std::uint8_t*>(strBody.data()),
                static_cast<std::uint32_t>(strBody.size()));
    return body;
}

// The most that the process ever had, in MiB, since it was last forgotten.
double peakMemory() {
    double fPeak = 0;
    if (std::FILE* pStatus = std::fopen("/proc/self/status", "r")) {
        char szLine[256];
        long nKilobytes = 0;
        while (std::fgets(szLine, sizeof szLine, pStatus) != nullptr) {
            if (std::sscanf(szLine, "VmHWM: %ld", &nKilobytes) == 1) {
                fPeak = static_cast<double>(nKilobytes) / 1024;
            }
        }
        std::fclose(pStatus);
    }
    return fPeak;
}

void forgetPeak() {
    malloc_trim(0);
    if (std::FILE* pForget = std::fopen("/proc/self/clear_refs", "w")) {
        std::fputs("5", pForget);
        std::fclose(pForget);
    }
}

void decode(benchmark::State& state, const Shape& shape) {
    const CommandBuffer body = bodyOf(shape, static_cast<std::size_t>(state.range(0)));
    bool bRead = false;
    forgetPeak();
    const double fBefore = peakMemory();
    for ([[maybe_unused]] auto _ : state) {
        DomainList records;
        bRead = SDKNormalXmlBodyParser().parseCommandBody(body, records);
    }
    state.counters["MiB"] = peakMemory() - fBefore;
    state.SetLabel(bRead ? "read" : "refused");
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * state.range(0));
}

}  // namespace

int main(int nCount, char** pArguments) {
    // The lines about absent fields go to standard output, the figures elsewhere.
    if (std::freopen("/dev/null", "w", stdout) == nullptr) {
        return 1;
    }
    benchmark::Initialize(&nCount, pArguments);
    benchmark::ConsoleReporter figures(benchmark::ConsoleReporter::OO_Tabular);
    figures.SetOutputStream(&std::cerr);
    const std::vector<Shape> vecShapes = shapes();
    for (const Shape& shape : vecShapes) {
        benchmark::RegisterBenchmark(shape.szName, decode, shape)
            ->Arg(64 << 10)
            ->Arg(1 << 20)
            ->Arg(8 << 20)
            ->Unit(benchmark::kMillisecond);
    }
    benchmark::RunSpecifiedBenchmarks(&figures);
}
