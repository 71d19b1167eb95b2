#pragma once

namespace project {

// Registers the creatable classes of this layer ("qxvb60.Driver").
void RegisterProjectClasses();

}  // namespace project
