// Addresses, sizes and serial numbers keep their order in right-to-left text.
import type { ReactNode } from "react";

export function Bdi({ children }: { children: ReactNode }) {
    return <bdi dir="ltr">{children}</bdi>;
}
