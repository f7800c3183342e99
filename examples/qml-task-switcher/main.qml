// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQuick 2.9
import QtQuick.Window 2.2
// Qualified, since both QtQuick.Window and Telvaro have a type "Screen".
import Telvaro 1.0 as Telvaro

Window {
    id: window

    visible: true
    width: 800
    height: 480
    color: "#f5f6f8"
    title: "All views"

    Telvaro.TaskSwitcher {
        id: taskSwitcher

        onRequestFailed: message.text = "Cannot switch: " + error.message
        onCurrentViewChanged: message.text = ""
    }

    Text {
        id: heading

        x: 32
        y: 24
        text: "All views"
        color: "#1f2a37"
        font.pixelSize: 26
        font.weight: Font.DemiBold
    }

    GridView {
        id: grid

        anchors {
            top: heading.bottom
            bottom: message.top
            left: parent.left
            right: parent.right
            margins: 32
            topMargin: 20
        }
        cellWidth: 232
        cellHeight: 172
        clip: true
        focus: true
        // The rows keep their delegates when views come, go and change, so that these can be animated.
        model: taskSwitcher.views
        delegate: ViewTile {
            width: grid.cellWidth - 16
            height: grid.cellHeight - 16
            title: model.title
            appId: model.appId
            current: model.current
            onClicked: taskSwitcher.switchTo(model.uuid)
            Keys.onReturnPressed: taskSwitcher.switchTo(model.uuid)
        }
        add: Transition {
            NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 150 }
        }
        displaced: Transition {
            NumberAnimation { properties: "x,y"; duration: 150 }
        }
    }

    Text {
        id: message

        x: 32
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 24
        color: "#6b7785"
        font.pixelSize: 16
    }

    Text {
        anchors.centerIn: parent
        visible: !taskSwitcher.available
        text: {
            switch (taskSwitcher.status) {
            case Telvaro.TaskSwitcher.Absent:
                return "The compositor service is not there.";
            case Telvaro.TaskSwitcher.Failed:
                return "The compositor service does not give its views.";
            default:
                return "Asking the compositor service";
            }
        }
        color: "#6b7785"
        font.pixelSize: 18
    }
}
