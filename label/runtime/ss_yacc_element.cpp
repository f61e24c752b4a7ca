#include "label/runtime/ss_yacc_element.h"

namespace tervane {

SSYaccElementPool* SSYaccElementPool::create() {
    auto* pool = new (std::nothrow) SSYaccElementPool();
    if (!pool)
        throw SSExceptionOutOfStorage();
    return pool;
}

void SSYaccElementPool::abandon() {
    // Not yet abandoned while freeing, so that the pool outlives its own loop.
    while (SSYaccStackElement* element = kept_) {
        kept_ = element->nextKept_;
        --keptCount_;
        free(element);
    }
    abandoned_ = true;
    if (homed_ == 0)
        delete this;
}

void SSYaccElementPool::free(SSYaccStackElement* element) {
    element->home_ = nullptr;
    element->destroy();
    if (--homed_ == 0 && abandoned_)
        delete this;
}

} // namespace tervane
