import QtQml

/// One volume of the plug-in's model: names, and sizes in KB.
QtObject {
    required property string rootPathRole
    required property string nameRole
    required property real sizeRole
    required property real availableSizeRole
    required property bool isNASRole
}
