#include "Core/Diagnosis/AppGroup.h"

namespace ravik {

std::uint64_t AgentSession::footprintBytes() const {
    std::uint64_t sum = 0;
    for (const Proc& member : members) sum += member.footprintBytes;
    return sum;
}

}  // namespace ravik
