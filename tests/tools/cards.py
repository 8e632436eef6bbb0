"""Cards as cameras write them, by name, with the sidecars that the utilities read."""

import os

P2_NAMESPACE = "urn:schemas-Professional-Plug-in:P2:ClipMetadata:v3.1"


def _connection(name, identifier, clip_name):
    label = f"<ClipName>{clip_name}</ClipName>" if clip_name else ""
    return f"<{name}><GlobalClipID>{identifier}</GlobalClipID>{label}</{name}>"


def p2_clip_xml(clip, identifier, shot=None, top=None, previous=None, next_=None,
                start="01:02:03:04", frame_rate='<FrameRate DropFrameFlag="true">59.94i</FrameRate>',
                edit_unit="1001/30000"):
    """A clip XML with the line ends of the cameras. `top`, `previous` and `next_` are pairs of
    identifier and clip name (or None)."""
    relation = ""
    if top:
        links = [("Top", top), ("Previous", previous), ("Next", next_)]
        connection = "".join(_connection(name, *link) for name, link in links if link)
        relation = ("<Relation><OffsetInShot>0</OffsetInShot>"
                    f"<GlobalShotID>{shot}</GlobalShotID>"
                    f"<Connection>{connection}</Connection></Relation>")
    lines = ['<?xml version="1.0" encoding="UTF-8" standalone="no" ?>',
             f'<P2Main xmlns="{P2_NAMESPACE}">',
             "<ClipContent>",
             f"<ClipName>{clip}</ClipName>",
             f"<GlobalClipID>{identifier}</GlobalClipID>",
             "<Duration>100</Duration>",
             f"<EditUnit>{edit_unit}</EditUnit>",
             relation,
             "<EssenceList><Video><VideoFormat>MXF</VideoFormat>",
             frame_rate,
             f"<StartTimecode>{start}</StartTimecode>",
             "</Video></EssenceList>",
             "</ClipContent>",
             "</P2Main>"]
    return "\r\n".join(line for line in lines if line).encode() + b"\r\n"


def p2_identifier(name):
    """A global clip identifier, in the form of a UMID of 32 bytes."""
    return "060A2B340101010501010D4313000000" + os.fsencode(name).hex().upper().rjust(32, "0")


def p2_series(case, names, card="p2", shot="SHOT", left_out=()):
    """One recording in the pieces `names`, linked; those in `left_out` are not on the card. Gives
    the paths of the pieces that are, in playing order."""
    link = [(p2_identifier(name), name) for name in names]
    paths = []
    for i, name in enumerate(names):
        if name in left_out:
            continue
        xml = p2_clip_xml(name, link[i][0], shot=p2_identifier(shot), top=link[0],
                          previous=link[i - 1] if i > 0 else None,
                          next_=link[i + 1] if i + 1 < len(names) else None)
        case.write(f"{card}/CONTENTS/CLIP/{name}.XML", xml)
        paths.append(case.write(f"{card}/CONTENTS/VIDEO/{name}.MXF"))
    return [os.fsdecode(path) for path in paths]


def p2_skeleton(case, card="p2"):
    """The marker by which a P2 card is known, beside its clips."""
    case.write(f"{card}/LASTCLIP.TXT", b"0001\r\n1.0\r\n1\r\n")
    os.makedirs(os.path.join(case.folder, card, "CONTENTS/VIDEO"), exist_ok=True)
    return os.path.join(case.folder, card)


XDCAM_META = """<?xml version="1.0" encoding="UTF-8"?>
<NonRealTimeMeta xmlns="urn:schemas-professionalDisc:nonRealTimeMeta:ver.2.00"
    lastUpdate="2011-05-03T14:02:09+02:00">
  <TargetMaterial umidRef="{umid}"/>
  <Duration value="240"/>
  <LtcChangeTable tcFps="30" halfStep="false">
    <LtcChange frameCount="0" value="{first}" status="increment"/>
    <LtcChange frameCount="239" value="{last}" status="end"/>
  </LtcChangeTable>
  <VideoFormat>
    <VideoFrame videoCodec="MPEG2HD" captureFps="29.97p" formatFps="29.97p"/>
  </VideoFormat>
</NonRealTimeMeta>
"""


def xdcam_meta(umid="060A2B34" * 8, first="04030201", last="03100201"):
    """Timecodes are eight hex digits: frames, seconds, minutes, hours."""
    return XDCAM_META.format(umid=umid, first=first, last=last).encode()


def ex_segments(case, take="632_0001", pieces=range(1, 4), card="ex", store="BPAV/CLPR"):
    """The segments of one take, each with its sidecar. Gives the paths of the clips."""
    paths = []
    for piece in pieces:
        name = f"{take}_{piece:02}"
        folder = f"{card}/{store}/{name}"
        case.write(f"{folder}/{name}M01.XML", xdcam_meta())
        paths.append(os.fsdecode(case.write(f"{folder}/{name}.MP4")))
    return paths
