<?php

// What the extension "vexorapi" gives to PHP, for editors and analysers. A test compares it with what
// the extension itself says.

namespace {
    /**
     * Carries out one command in XML.
     *
     * @return string|false the library's result exactly, the empty string when it did not fit; false
     *                      where the library declines the command
     */
    function vexorapi_call(string $command): string|false {}
}

namespace Vexorapi {
    /** The head of all exceptions of the extension. */
    class Exception extends \RuntimeException {}

    /** There is no such function; $nearest is the one that may be meant. */
    class UnknownFunction extends Exception
    {
        /** @var string */
        public $function = null;
        /** @var ?string */
        public $nearest = null;
    }

    /** A value that a parameter does not take. */
    class ParameterError extends Exception
    {
        /** @var ?string */
        public $function = null;
        /** @var ?string */
        public $parameter = null;
    }

    /** The function has no such parameter; $nearest is the one that may be meant. */
    class UnknownParameter extends ParameterError
    {
        /** @var ?string */
        public $nearest = null;
    }

    /** The library does not take the command. */
    class Declined extends Exception {}

    /** The result is too large, or was cut: ask for fewer records. */
    class DoesNotFit extends Exception {}

    /** The result lacks what a result of its function has. */
    class Unreadable extends Exception {}

    /**
     * The controller refused the call. getCode() is its status; $name and $sentence say what it means
     * where the controller's codes are known.
     */
    class Refused extends Exception
    {
        /** @var string */
        public $function = null;
        /** @var ?string */
        public $name = null;
        /** @var ?string */
        public $sentence = null;
    }

    /** No entry in the system's shadow file, or one that may not be read (code 2), or a wrong password (3). */
    class LogonFailed extends Exception {}

    /** The event store cannot be read, so that nothing is known of its events. */
    class StoreUnreadable extends Exception {}

    /** What a user may do: root and the members of the group root administrate. */
    enum Group: string
    {
        case Administrator = 'Administrator';
        case ValidUser = 'ValidUser';
        case UnknownUser = 'UnknownUser';
    }

    /**
     * Stored events, the oldest first; the keys are the store's own numbers of them.
     *
     * At the end, valid() is false; next() looks whether there are newer ones by now. A store that was
     * emptied is read from its beginning.
     */
    final class Events implements \Iterator
    {
        /** @throws Exception */
        public function current(): array {}
        public function key(): int {}
        public function next(): void {}
        public function rewind(): void {}
        public function valid(): bool {}
    }

    /**
     * The library's functions by name, with their parameters and results as arrays.
     *
     * docs/xml-api.md says what they take and answer: a record is an array by names, a list and an array
     * of numbers is a list, numbers are int, truth values bool. A status that is not 0 is an exception
     * and no part of the result. Sizes count sectors of 512 bytes.
     */
    final class Client
    {
        /**
         * Calls a function. A list begins with its first entry and has at most 128, if not asked otherwise.
         *
         * @param array<string, int|bool|string|list<int>> $parameters
         * @return array<string, mixed>
         * @throws Exception
         */
        public function call(string $function, array $parameters = []): array {}

        /**
         * The entries of a whole list, which is asked for page by page and may change meanwhile.
         *
         * @param array<string, int|bool|string|list<int>> $parameters
         * @return list<array<string, mixed>>
         * @throws Exception
         */
        public function all(string $function, array $parameters = []): array {}

        /** The stored events from that number on. */
        public function events(int $from = 0): Events {}

        /**
         * How often each kind of object has changed; the counters wrap at 2**32.
         *
         * @return array<string, int>
         * @throws Exception
         */
        public function counters(): array {}

        /** What the user may do. @throws LogonFailed unless the password is right */
        public function logon(string $user, #[\SensitiveParameter] string $password): Group {}
    }
}
