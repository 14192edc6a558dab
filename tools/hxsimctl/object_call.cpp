#include "object_call.h"

namespace hxsimctl {

Object ObjectNow(Story& story, const Target& target) {
    return NameObject(story.driver().Current(), target);
}

Step CallAbout(const Target& target, const ObjectCall& call) {
    return [target, call](Story& story) {
        const Object object = ObjectNow(story, target);
        story.driver().Call(call.function, [&] { return call.make(object); });
    };
}

}  // namespace hxsimctl
