#include "plugin/MethodTable.h"
#include "plugin/RbiTunesDB.h"

REALproperty RbiTunesDBProperties[kPropertyCount] = {
    Property<"Integer", Get_Error>("Error"),
    Property<"Integer", Get_LibType>("LibType"),
    Property<"Boolean", Get_UseSJIS, Set_UseSJIS>("UseSJIS"),
    Property<"Integer", Get_ResultEncode, Set_ResultEncode>("ResultEncode"),
    Property<"String", Get_VolumeName>("VolumeName"),
    Property<"Boolean", Get_ZeroBasePlayerlist, Set_ZeroBasePlayerlist>("ZerobasePlayerlist"),
};

REALclassDefinition RbiTunesDBClass = {
    .version = kInterfaceVersion,
    .name = "ZemiTunesDB",
    .superName = nullptr,
    .dataSize = sizeof(RbiTunesDBData),
    .dataOffset = 0,
    .constructor = nullptr,  // the method "Constructor" is
    .destructor = Guarded<ZemRbiTunesDB_Destructor>::Slot(),
    .properties = RbiTunesDBProperties,
    .propertyCount = kPropertyCount,
    .methods = RbiTunesDBMethods,
    .methodCount = kMethodCount,
    .events = nullptr,
    .eventCount = 0,
    .constants = nullptr,
    .constantCount = 0,
};

REALclassDefinition *RbiTunesDBClassPointer = &RbiTunesDBClass;

void PluginEntry() { REALRegisterClass(&RbiTunesDBClass); }
