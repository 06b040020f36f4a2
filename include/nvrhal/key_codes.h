/*
 * key_codes.h - codes of the remote control's and the panel's keys.
 *
 * A key code is one letter or sign of ASCII. The remote control's come from ext_keyboard_value and
 * from `key`; the panel's from its node (input_nodes.h), which has the same codes.
 *
 * What a key does is the application's choice. The names are what stands on the buttons of the
 * remote controls that come with the board; keys without a name there are numbered.
 */
#ifndef NVRHAL_KEY_CODES_H
#define NVRHAL_KEY_CODES_H

/** Codes of keys. */
enum KeyCode {
    KEY_CODE_ZOOM_OUT = 84,
    KEY_CODE_STOP = 85,
    KEY_CODE_0 = 86,
    KEY_CODE_1 = 87,
    KEY_CODE_2 = 88,
    KEY_CODE_3 = 89,
    KEY_CODE_4 = 90,
    KEY_CODE_5 = 91,
    KEY_CODE_6 = 92,
    KEY_CODE_7 = 93,
    KEY_CODE_8 = 94,
    KEY_CODE_9 = 95,
    KEY_CODE_ZOOM = 96, /* the zoom key that keyboard_zoom_flag_m holds back */
    KEY_CODE_LAYOUT = 97,
    KEY_CODE_LEFT = 98,
    KEY_CODE_NEXT = 99,
    KEY_CODE_VOLUME_DOWN = 100,
    KEY_CODE_VOLUME_UP = 101,
    KEY_CODE_PAUSE = 102,
    KEY_CODE_ZOOM_IN = 103,
    KEY_CODE_FASTER = 104,
    KEY_CODE_PLAY = 105,
    KEY_CODE_ENTER = 106,
    KEY_CODE_UP = 107,
    KEY_CODE_F5 = 108, /* of the local IR reader only */
    KEY_CODE_MENU = 109,
    KEY_CODE_MUTE = 110,
    KEY_CODE_SNAPSHOT = 112,
    KEY_CODE_BACK = 113,
    KEY_CODE_F1 = 114, /* of the local IR reader only */
    KEY_CODE_F2 = 115,
    KEY_CODE_F3 = 116,
    KEY_CODE_F4 = 117,
    KEY_CODE_RECORD = 118,
    KEY_CODE_PREVIOUS = 119,
    KEY_CODE_DOWN = 120,
    KEY_CODE_RIGHT = 121,
    KEY_CODE_UNKNOWN = 122, /* a code that the local IR reader does not know */
};

#endif
