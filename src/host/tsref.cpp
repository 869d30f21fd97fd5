#include "tsref.h"

#include <QtGlobal>

namespace VyObjects {

namespace {
std::atomic<long long> liveObjects{0};
std::atomic<long long> outstandingReferences{0};
} // namespace

TsRefBase::TsRefBase()
{
    ++liveObjects;
}

TsRefBase::~TsRefBase()
{
    --liveObjects;
}

void TsRefBase::AddRef() const
{
    ++m_refCount;
    ++outstandingReferences;
}

bool TsRefBase::Release() const
{
    int count = m_refCount.load();
    do {
        Q_ASSERT_X(count > 0, "TsRefBase::Release", "object holds no reference");
        if (count <= 0)
            return false;
    } while (!m_refCount.compare_exchange_weak(count, count - 1));
    --outstandingReferences;
    if (count != 1)
        return false;
    delete this;
    return true;
}

int TsRefBase::RefCount() const
{
    return m_refCount.load();
}

long long TsRefBase::LiveObjectCount()
{
    return liveObjects.load();
}

long long TsRefBase::OutstandingReferenceCount()
{
    return outstandingReferences.load();
}

} // namespace VyObjects
