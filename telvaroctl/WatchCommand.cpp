// SPDX-License-Identifier: MIT
// SPDX-FileCopyrightText: The Telvaro authors
#include "BusEnd.h"
#include "Command.h"
#include "Console.h"
#include "Json.h"
#include "Service.h"
#include "Template.h"
#include "TimeLimit.h"
#include "UnixSignals.h"
#include "ViewFields.h"

#include <TelvaroDBusDefinitions.h>
#include <TelvaroScreen.h>
#include <TelvaroTaskSwitcher.h>

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDateTime>
#include <QJsonDocument>
#include <QObject>
#include <QString>

#include <array>

namespace {

const QString cTimestamps = QStringLiteral("timestamps");
const QString cSignal = QStringLiteral("signal");
const QString cValue = QStringLiteral("value");
const QString cTime = QStringLiteral("time");
const QString cAppId = QStringLiteral("appId");
const QString cTitle = QStringLiteral("title");

QStringList fieldNames()
{
    return QStringList({cTime, cSignal, cValue}) + ViewFields::names();
}

QString now()
{
    const QDateTime time = QDateTime::currentDateTime();
    return time.toOffsetFromUtc(time.offsetFromUtc()).toString(Qt::ISODateWithMs);
}

struct Form
{
    std::optional<Template> format;
    bool asJson;
    bool hasTimestamps;
};

/// Prints what changes in the service, by the names of the signals of the libraries, whenever its state is known.
class Watch : public QObject
{
    Q_OBJECT

public:
    explicit Watch(const Form& form)
        : mForm(form)
    {
        const std::array<const TelvaroLiveObject*, 3> objects = {&mService, &mTaskSwitcher, &mScreen};
        for (const TelvaroLiveObject* const object : objects) {
            connect(object, &TelvaroLiveObject::statusChanged, this, &Watch::onStatusChanged);
        }
        connect(&mTaskSwitcher, &TelvaroTaskSwitcher::viewsChanged, this, [this] {
            reportChange(mTaskSwitcher, "viewsChanged", {});
        });
        connect(&mTaskSwitcher, &TelvaroTaskSwitcher::currentViewChanged, this, [this] {
            reportChange(mTaskSwitcher, "currentViewChanged", mTaskSwitcher.getCurrentView());
        });
        connect(&mScreen, &TelvaroScreen::screenSaverActiveChanged, this, [this] {
            reportChange(mScreen, "screenSaverActiveChanged", mScreen.isScreenSaverActive());
        });
        connect(&mScreen, &TelvaroScreen::screenSaverEnabledChanged, this, [this] {
            reportChange(mScreen, "screenSaverEnabledChanged", mScreen.isScreenSaverEnabled());
        });
        connect(&mScreen, &TelvaroScreen::screenSaverTimeoutChanged, this, [this] {
            reportChange(mScreen, "screenSaverTimeoutChanged", mScreen.getScreenSaverTimeout());
        });
        connect(&mScreen, &TelvaroScreen::orientationChanged, this, [this] {
            reportChange(mScreen, "screenOrientationChanged", mScreen.getOrientation());
        });
        connect(&mScreen, &TelvaroScreen::fullScreenChanged, this, [this] {
            reportChange(mScreen, "fullScreenChanged", mScreen.isFullScreen());
        });
    }

private:
    static void print(const QString& line)
    {
        if (!printLine(line)) {
            QCoreApplication::exit(Failed);
        }
    }

    void report(const char* signal, const QVariant& value, const QVariantMap& view = {}) const
    {
        QVariantMap fields{{cSignal, QLatin1String(signal)}};
        if (value.isValid()) {
            fields.insert(cValue, value);
        }
        if (mForm.hasTimestamps || mForm.format) {
            fields.insert(cTime, now());
        }
        if (mForm.format) {
            for (auto field = view.begin(); field != view.end(); ++field) {
                fields.insert(field.key(), field.value());
            }
            print(mForm.format->render(fields));
            return;
        }
        if (mForm.asJson) {
            for (const QString& name : {cAppId, cTitle}) {
                if (view.contains(name)) {
                    fields.insert(name, view.value(name));
                }
            }
            print(QString::fromUtf8(QJsonDocument(toJson(fields)).toJson(QJsonDocument::Compact)));
            return;
        }
        QStringList words;
        for (const QVariant& word : {fields.value(cTime), fields.value(cSignal), value, view.value(cAppId)}) {
            if (!word.toString().isEmpty()) {
                words.append(printable(word.toString()));
            }
        }
        print(words.join(QLatin1Char(' ')));
    }

    // The first values, and the empty ones of a service that has gone, are no changes.
    void reportChange(const TelvaroLiveObject& object, const char* signal, const QVariant& value)
    {
        if (!mIsServiceKnown || object.getStatus() == TelvaroLiveObject::Absent) {
            return;
        }
        const auto view =
            &object == &mTaskSwitcher ? mTaskSwitcher.getViews()->getView(value.toString()) : TelvaroViewModel::View();
        report(signal, value, view.uuid.isEmpty() ? QVariantMap() : ViewFields::of(view, true));
    }

    void onStatusChanged()
    {
        const bool isThere = mService.getStatus() == TelvaroLiveObject::Ready;
        const bool isKnown = isThere && hasState(mTaskSwitcher) && hasState(mScreen);
        if (mService.getStatus() == TelvaroLiveObject::Loading || isThere != isKnown) {
            return;
        }
        if (!mIsAnnounced) {
            mIsAnnounced = true;
            TimeLimit::lift();
            printError(QStringLiteral("watching %1").arg(TelvaroDBusDefinitions::getServiceName()));
        } else if (isKnown != mIsServiceKnown) {
            report(isKnown ? "serviceBack" : "serviceGone", {});
        }
        mIsServiceKnown = isKnown;
    }

    static bool hasState(const TelvaroLiveObject& object)
    {
        return object.getStatus() == TelvaroLiveObject::Ready || object.getStatus() == TelvaroLiveObject::Failed;
    }

    Form mForm;
    bool mIsAnnounced = false;
    bool mIsServiceKnown = false;
    TelvaroLiveObject mService;
    TelvaroTaskSwitcher mTaskSwitcher;
    TelvaroScreen mScreen;
};

ExitStatus watch(const QCommandLineParser& parser, const QStringList& /*arguments*/)
{
    const auto format = Template::fromOption(parser, fieldNames());
    if (const Error* const error = std::get_if<Error>(&format)) {
        return usageError(QStringLiteral("watch"), error->text);
    }
    if (!Service::connect()) {
        return Failed;
    }
    // From here on the event loop ends the process.
    UnixSignals::block();
    const UnixSignals unixSignals;
    QObject::connect(&unixSignals, &UnixSignals::terminationRequested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    const BusEnd busEnd;
    const Watch watch({std::get<std::optional<Template>>(format), isJsonWanted(parser), parser.isSet(cTimestamps)});
    return static_cast<ExitStatus>(QCoreApplication::exec());
}

} // namespace

QList<Command> watchCommands()
{
    return {
        {"watch", "Prints each change as it comes, until interrupted.", "",
         "Prints 'watching' to standard error once it listens. Waits for a service that is not "
         "registered yet, and prints 'serviceGone' and 'serviceBack' when it goes and comes. "
         "The time limit ends when it listens.",
         [] {
             return Template::options(fieldNames())
                 + QList<QCommandLineOption>{{cTimestamps, QStringLiteral("Prints the time before each change.")}};
         },
         watch},
    };
}

#include "WatchCommand.moc"
