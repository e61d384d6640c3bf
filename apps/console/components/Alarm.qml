import QtQml

/// One alarm as the status monitor tells it.
QtObject {
    required property string sourceRole
    required property int kindRole
    required property string groupIdRole
    required property string groupNameRole
    required property date sinceRole
}
