#include "store/session.h"

namespace qmr {

Session::Session(AppHome home, Settings& settings)
    : m_home(std::move(home)), m_settings(settings), m_paths(m_home)
{
}

Session::~Session() = default;

} // namespace qmr
