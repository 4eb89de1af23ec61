// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/store/settings.h"

#include "base/bundle/bundle.h"
#include "base/text/format.h"
#include "base/text/log.h"

namespace tavrix
{

namespace
{

struct Settings {
    QString temporaryFolder;
    unsigned char debug = 0;
    unsigned char debugDev = 0;
    int wmv = 0;
    int divx = 0;
    int aic = 0;
    int prores = 0;
    int mpeg2 = 0;
    // Closed until start-up has made the drop area ready.
    unsigned char intakeOpen = 0;
};

Settings& settings()
{
    static Settings instance;
    return instance;
}

} // namespace

QString getTMPFOLDER()
{
    const QString& folder = settings().temporaryFolder;
    return folder.isNull() ? formatText(QStringLiteral("/private/tmp/%@"), {bundleName()}) : folder;
}

void setTMPFOLDER(const QString& folder)
{
    settings().temporaryFolder = folder;
}

unsigned char getDEBUG()
{
    return settings().debug;
}

void setDEBUG(unsigned char on)
{
    settings().debug = on;
    setDebugLogged(on != 0);
}

unsigned char getDEBUGDEV()
{
    return settings().debugDev;
}

void setDEBUGDEVForTests(unsigned char on)
{
    settings().debugDev = on;
    setDevLogged(on != 0);
}

int getWMV()
{
    return settings().wmv;
}

void setWMV(int available)
{
    settings().wmv = available;
}

int getDIVX()
{
    return settings().divx;
}

void setDIVX(int available)
{
    settings().divx = available;
}

int getAIC()
{
    return settings().aic;
}

void setAIC(int available)
{
    settings().aic = available;
}

int getPRORES()
{
    return settings().prores;
}

void setPRORES(int available)
{
    settings().prores = available;
}

int getMPEG2()
{
    return settings().mpeg2;
}

void setMPEG2(int available)
{
    settings().mpeg2 = available;
}

unsigned char getOPENPERM()
{
    return settings().intakeOpen;
}

void setOPENPERM(unsigned char open)
{
    settings().intakeOpen = open;
}

} // namespace tavrix
