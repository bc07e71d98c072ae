#include "foreign/error.h"

#include <utility>

namespace foreign {

Error::Error(QString text) : m_text(std::move(text)), m_what(m_text.toUtf8()) {}

} // namespace foreign
