#include "store/opening.h"

#include <algorithm>

namespace store {

QList<Error> refreshEach(const QList<DataSource *> &sources)
{
    QList<Error> errors;
    for (DataSource *source : sources) {
        try {
            source->refresh();
        } catch (const Error &error) {
            const bool told = std::any_of(errors.cbegin(), errors.cend(),
                                          [&](const Error &other) { return other.file() == error.file(); });
            if (!told)
                errors.append(error);
        }
    }
    return errors;
}

void requery(DataSource &source, const SqlText &text, const SqlText &otherwise)
{
    source.setRecordSource(text);
    try {
        source.refresh();
    } catch (const Error &) {
        source.setRecordSource(otherwise);
        throw;
    }
}

void requery(DataSource &source, const SqlText &text)
{
    requery(source, text, SqlText(source.recordSource()));
}

} // namespace store
