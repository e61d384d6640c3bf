# The class's direct base carries no meta-object of its own, so the generator names none that tools could know. For QML
# the type is a QObject.
file(READ "${GENERATED}" description)
string(REGEX REPLACE "\n *prototype: \"PluginBase\"" "" description "${description}")
string(REPLACE "        accessSemantics: \"reference\"\n" "        accessSemantics: \"reference\"\n        prototype: \"QObject\"\n"
    described "${description}")
if(described STREQUAL description)
    message(FATAL_ERROR "${GENERATED} does not look as expected: found no place for the base type")
endif()
file(WRITE "${DESCRIPTION}" "${described}")
