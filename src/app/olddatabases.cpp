#include "app/olddatabases.h"

namespace app {

bool OldDatabases::convertTo(const QString &oldFile, const QString &)
{
    throw store::Error(store::ErrorKind::Jet, oldFile, {});
}

bool OldDatabases::convertInPlace(const QString &oldFile)
{
    throw store::Error(store::ErrorKind::Jet, oldFile, {});
}

} // namespace app
