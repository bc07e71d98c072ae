// zhurnal-jetread: reads an old database (Jet 3 or Jet 4) and writes tables and rows on standard output, in
// the form of foreign/jetprotocol.h. Old files may be damaged in any way, and the library that reads them may
// crash on them: so this is a program of its own, and its caller judges by how the stream ends.
//
//   zhurnal-jetread FILE [--codepage N] [--tables]
#include "jetread/database.h"
#include "jetread/output.h"
#include "jetread/values.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/resource.h>

namespace {

using foreign::jet::Failure;
using foreign::jet::Frame;
using jetread::Database;
using jetread::Output;
using jetread::Payload;

struct Arguments {
    std::string path;
    int codePage = 0;
    bool tablesOnly = false;
};

#if defined(__SANITIZE_ADDRESS__)
constexpr bool kSanitized = true; // the sanitizer reserves far more address space than it uses
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif
#else
constexpr bool kSanitized = false;
#endif

void limit(int resource, rlim_t most)
{
    rlimit limits{};
    if (::getrlimit(static_cast<__rlimit_resource_t>(resource), &limits) != 0)
        return;
    limits.rlim_cur = limits.rlim_max == RLIM_INFINITY || most < limits.rlim_max ? most : limits.rlim_max;
    (void)::setrlimit(static_cast<__rlimit_resource_t>(resource), &limits);
}

void limitResources()
{
    constexpr rlim_t kAddressSpace = rlim_t{1} << 30;
    constexpr rlim_t kSeconds = 600; // a million rows take three
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_CPU, kSeconds);
    if (!kSanitized)
        limit(RLIMIT_AS, kAddressSpace);
}

bool parse(int argc, char **argv, Arguments &arguments)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--tables") == 0)
            arguments.tablesOnly = true;
        else if (std::strcmp(argv[i], "--codepage") == 0 && i + 1 < argc)
            arguments.codePage = std::atoi(argv[++i]);
        else if (arguments.path.empty())
            arguments.path = argv[i];
        else
            return false;
    }
    return !arguments.path.empty();
}

int fail(Output &output, Failure reason)
{
    Payload payload;
    payload.byte(static_cast<std::uint8_t>(reason));
    output.frame(Frame::Failure, payload);
    output.flush();
    return 1;
}

void writeTable(Output &output, const jetread::Table &table)
{
    Payload payload;
    payload.text(table.name);
    payload.number32(table.claimedRows);
    payload.byte(table.definition == nullptr ? 1 : 0);
    payload.number16(static_cast<std::uint32_t>(table.columnCount()));
    for (std::size_t i = 0; i < table.columnCount(); ++i) {
        const MdbColumn &column = table.column(i);
        payload.byte(static_cast<std::uint8_t>(column.col_type));
        payload.number16(static_cast<std::uint32_t>(column.col_size));
        payload.text(column.name);
    }
    output.frame(Frame::Table, payload);
}

std::uint64_t writeRows(Output &output, Database &database, const jetread::Table &table)
{
    jetread::ValueWriter values(database);
    Payload payload;
    const auto end = database.readRows(table, [&](const std::vector<MdbField> &fields) {
        payload.clear();
        for (std::size_t i = 0; i < table.columnCount(); ++i)
            if (!values.write(table.column(i), fields[i], payload))
                return false;
        if (payload.bytes().size() > foreign::jet::kLongestFrame)
            return false;
        output.frame(Frame::Row, payload);
        return true;
    });
    payload.clear();
    payload.number32(end.rows);
    payload.number32(end.unreadable);
    payload.byte(end.damaged ? 1 : 0);
    output.frame(Frame::End, payload);
    return end.rows;
}

int run(const Arguments &arguments)
{
    Output output;
    Database database(arguments.path, arguments.codePage);
    if (!database.isOpen())
        return fail(output, Failure::CannotOpen);
    if (!database.jet3() && !database.jet4())
        return fail(output, Failure::NotJet);
    if (!database.codePageKnown())
        return fail(output, Failure::CodePage);
    constexpr int kJet3 = 3;
    constexpr int kJet4 = 4;
    Payload payload;
    payload.byte(database.jet3() ? kJet3 : kJet4);
    payload.number16(static_cast<std::uint32_t>(database.headerCodePage()));
    payload.number16(static_cast<std::uint32_t>(database.usedCodePage()));
    output.frame(Frame::File, payload);
    const auto tables = database.tables();
    if (!tables)
        return fail(output, Failure::Catalog);
    for (const jetread::Table &table : *tables)
        writeTable(output, table);
    output.flush(); // known even if a row ends the program
    std::uint64_t rows = 0;
    for (std::size_t i = 0; i < tables->size() && !arguments.tablesOnly; ++i) {
        if ((*tables)[i].definition == nullptr)
            continue;
        payload.clear();
        payload.number16(static_cast<std::uint32_t>(i));
        output.frame(Frame::Begin, payload);
        rows += writeRows(output, database, (*tables)[i]);
    }
    payload.clear();
    payload.number64(rows);
    output.frame(Frame::Done, payload);
    output.flush();
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    Arguments arguments;
    if (!parse(argc, argv, arguments)) {
        std::fputs("usage: zhurnal-jetread FILE [--codepage N] [--tables]\n", stderr);
        return 2;
    }
    limitResources();
    return run(arguments);
}
