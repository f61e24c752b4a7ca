#include "label/runtime/ss_lex_token.h"

namespace tervane {

SSLexLexeme* SSLexTokenData::lexeme() {
    if (object || !present)
        return object;
    SSLexLexeme* made = SSLexLexeme::create(source->bufferData() + start, length, narrow, token,
                                            line, offset, bufferOffset);
    if (userValue)
        made->setUserValue(userValue);
    made->addRef();
    object = made;
    return made;
}

void SSLexToken::setObject(SSLexLexeme* object) {
    if (object)
        object->addRef();
    data_.drop();
    data_ = {};
    data_.present = object != nullptr;
    data_.object = object;
}

} // namespace tervane
