// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
import QtQuick 2.9

Rectangle {
    id: tile

    property string title
    property string appId
    property bool current: false
    signal clicked()

    /// Returns a colour of the application.
    function colorOf(appId) {
        let hue = 0;
        for (let i = 0; i < appId.length; ++i) {
            hue = (hue * 31 + appId.charCodeAt(i)) % 360;
        }
        return Qt.hsva(hue / 360, 0.43, 0.67, 1);
    }

    radius: 12
    color: current ? "#e4eef8" : "white"
    border.color: activeFocus || current ? "#3d7ab5" : "#e3e7ec"
    border.width: activeFocus ? 2 : 1

    Column {
        anchors.fill: parent
        anchors.margins: 18
        spacing: 8

        Rectangle {
            width: 44
            height: 44
            radius: 10
            color: tile.colorOf(tile.appId)

            Text {
                anchors.centerIn: parent
                text: tile.title.charAt(0).toUpperCase()
                color: "white"
                font.pixelSize: 22
            }
        }
        Text {
            width: parent.width
            text: tile.title
            color: "#1f2a37"
            font.pixelSize: 18
            elide: Text.ElideRight
        }
        Text {
            width: parent.width
            text: tile.appId
            color: "#6b7785"
            font.pixelSize: 14
            elide: Text.ElideRight
        }
    }

    MouseArea {
        anchors.fill: parent
        onClicked: tile.clicked()
    }
}
