#include "tsgdal_p.h"

#include <mutex>

namespace VyObjects {

void registerGdalDrivers()
{
    static std::once_flag registered;
    std::call_once(registered, [] { GDALAllRegister(); });
}

TsGdalErrorTrap::TsGdalErrorTrap()
{
    CPLPushErrorHandlerEx(&TsGdalErrorTrap::collect, this);
}

TsGdalErrorTrap::~TsGdalErrorTrap()
{
    CPLPopErrorHandler();
}

QString TsGdalErrorTrap::reason() const
{
    return m_lastError.isEmpty() ? QString() : QStringLiteral(": ") + m_lastError;
}

void CPL_STDCALL TsGdalErrorTrap::collect(CPLErr level, CPLErrorNum /*number*/, const char* message)
{
    if (level < CE_Failure)
        return;
    auto* trap = static_cast<TsGdalErrorTrap*>(CPLGetErrorHandlerUserData());
    if (trap)
        trap->m_lastError = gdalText(message).trimmed();
}

bool TsGdalTransaction::start(QString* reason)
{
    TsGdalErrorTrap trap;
    // Forced: drivers that can emulate a transaction (by copying their files)
    // do so; drivers that cannot answer "unsupported" and the caller keeps
    // its own undo record.
    const OGRErr result = m_dataset.StartTransaction(TRUE);
    m_native = result == OGRERR_NONE;
    if (m_native || result == OGRERR_UNSUPPORTED_OPERATION)
        return true;
    setError(reason, QStringLiteral("no transaction could be started") + trap.reason());
    return false;
}

bool TsGdalTransaction::commit(QString* reason)
{
    TsGdalErrorTrap trap;
    if (m_native) {
        m_native = false;
        if (m_dataset.CommitTransaction() != OGRERR_NONE) {
            setError(reason, QStringLiteral("the changes could not be committed") + trap.reason());
            m_dataset.RollbackTransaction();
            return false;
        }
    }
    // Drivers that rewrite whole files (GeoJSON) write on flushing.
    m_dataset.FlushCache(false);
    if (!trap.lastError().isEmpty()) {
        setError(reason, QStringLiteral("the changes could not be written") + trap.reason());
        return false;
    }
    return true;
}

void TsGdalTransaction::rollback()
{
    TsGdalErrorTrap trap;
    if (m_native)
        m_dataset.RollbackTransaction();
    m_native = false;
}

} // namespace VyObjects
