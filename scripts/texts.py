"""Reads and writes message catalogues (.pot and .po) for scripts/update-texts and
scripts/make-pseudo-texts. Written for Python's standard library only."""
import ast
import re
from dataclasses import dataclass, field

# What fill() and strftime replace: %1, %-d, %OB.
PLACEHOLDER = re.compile(r'%(?:[1-9]|[-_^#0-9]*[EO]?[A-Za-z])')
FIELD = re.compile(r'(msgctxt|msgid|msgid_plural|msgstr(?:\[\d+\])?) (".*")')


@dataclass
class Message:
    """One entry. `texts` has the fields under their keywords, such as "msgid" or "msgstr[1]"."""
    comments: list = field(default_factory=list)
    texts: dict = field(default_factory=dict)

    def sources(self):
        """Returns the text in the program: the singular and, if it has one, the plural."""
        return [self.texts[key] for key in ('msgid', 'msgid_plural') if key in self.texts]

    def translations(self):
        return [text for key, text in self.texts.items() if key.startswith('msgstr')]

    def is_fuzzy(self):
        return any(line.startswith('#,') and 'fuzzy' in line for line in self.comments)


def read(path):
    """Returns the messages of a catalogue. The first is its header, whose msgid is empty."""
    messages, message, key = [], Message(), None
    for line in path.read_text(encoding='utf-8').splitlines() + ['']:
        found = FIELD.fullmatch(line)
        if found:
            key, text = found.groups()
            message.texts[key] = ast.literal_eval(text)
        elif line.startswith('"'):
            message.texts[key] += ast.literal_eval(line)
        elif line.startswith('#'):
            message.comments.append(line)
        elif message.texts:
            messages.append(message)
            message = Message()
    return messages


def quoted(text):
    for character, escaped in (('\\', '\\\\'), ('"', '\\"'), ('\n', '\\n'), ('\t', '\\t')):
        text = text.replace(character, escaped)
    return f'"{text}"'


def write(path, messages):
    entries = ('\n'.join(f'{key} {quoted(text)}' for key, text in message.texts.items())
               for message in messages)
    path.write_text('\n\n'.join(entries) + '\n', encoding='utf-8')
