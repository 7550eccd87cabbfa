#ifndef BSUTILS_BSUTILS_H
#define BSUTILS_BSUTILS_H

// Every public header of the library and of the services it is built on.

#include <bsutils/bitstreambuffer.h>
#include <bsutils/bitstreambufferreader.h>
#include <bsutils/bitstreamworkerstatechecker.h>
#include <bsutils/bytebuffer.h>
#include <bsutils/cpalloc.h>
#include <bsutils/cpassert.h>
#include <bsutils/cpbase64converter.h>
#include <bsutils/cpunicodeconverter.h>
#include <bsutils/cputils.h>
#include <bsutils/dataconv.h>
#include <bsutils/encoding.h>
#include <bsutils/fihandler.h>
#include <bsutils/fimessagetree.h>
#include <bsutils/fiparser.h>
#include <bsutils/fitreeiterator.h>
#include <bsutils/memorymessagetree.h>
#include <bsutils/memorytreebuilder.h>
#include <bsutils/messageinfo.h>
#include <bsutils/numerictextformat.h>
#include <bsutils/pwfdata.h>
#include <bsutils/pwfdatetimeformatter.h>
#include <bsutils/pwfexception.h>
#include <bsutils/pwficucalendar.h>
#include <bsutils/pwficudatetime.h>
#include <bsutils/textbufferreader.h>
#include <bsutils/textbufferwriter.h>
#include <bsutils/version.h>
#include <bsutils/workerinfo.h>
#include <zan/zanexception.h>
#include <zan/zaninsert.h>
#include <zan/zanlog.h>
#include <zan/zanlogsource.h>
#include <zan/zanstringbase.h>
#include <zan/zanutility.h>

#endif  // BSUTILS_BSUTILS_H
