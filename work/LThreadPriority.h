// Scheduling priority of the calling thread, in the LThread::Priority steps. Lowering is done
// only where the process may raise the thread back later; otherwise priorities stay as they are.
#pragma once

void LSetCurrentThreadPriority(int nPriority);
