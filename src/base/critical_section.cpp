#include "quillon9/base/critical_section.h"

CQNCriticalSection::CQNCriticalSection() { pthread_mutex_init(&m_mutex, nullptr); }

CQNCriticalSection::~CQNCriticalSection() { pthread_mutex_destroy(&m_mutex); }
