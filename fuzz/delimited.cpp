// Any bytes as a file of separated fields: reading ends, every view stays within the file, records follow
// each other, and a text without quotes comes out as it stands.
#include "foreign/delimited.h"
#include "foreign/error.h"

#include <cstdlib>

namespace {

void check(bool holds)
{
    if (!holds)
        std::abort();
}

void readAll(const foreign::TextFile &text)
{
    foreign::DelimitedReader reader(text.bytes);
    check(reader.separator() == ';' || reader.separator() == '\t');
    const char *begin = text.bytes.constData();
    const char *last = begin; // behind the field read last
    foreign::DelimitedRecord record;
    qint64 line = 0;
    qint64 records = 0;
    while (reader.next(record)) {
        check(++records <= text.bytes.size());
        check(record.line > line);
        line = record.line;
        check(!record.fields.empty() && record.fields.size() <= foreign::DelimitedReader::kMostFields);
        check(reader.position() <= reader.size() && reader.size() <= text.bytes.size());
        for (const foreign::DelimitedField &field : record.fields) {
            check(field.raw.size() <= foreign::DelimitedReader::kLongestField);
            check(field.raw.data() >= last);
            last = field.raw.data() + field.raw.size();
            check(last <= begin + reader.position());
            if (!field.quoted)
                check(!field.raw.contains(reader.separator()) && !field.raw.contains('\n') &&
                      !field.raw.contains('\r'));
            (void)field.text(text.coding);
        }
    }
    check(reader.position() == reader.size());
    check(!reader.next(record));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    try {
        readAll(foreign::prepareDelimited(
            QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size))));
    } catch (const foreign::Error &error) {
        check(!error.text().isEmpty() && !error.text().endsWith(QLatin1Char('.')));
    }
    return 0;
}
